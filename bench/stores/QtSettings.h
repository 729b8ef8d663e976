/// @file
#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include "files.h"
#include "stores/Store.h"

namespace vemora::bench {

inline std::string AsUtf8(const QString& text) { return text.toStdString(); }

/// QSettings in an INI file. To it a backslash separates names as a slash does.
class QtSettings : public Store {
 public:
  static constexpr const char* kName = "QSettings";

  using Name = QString;
  static Name MakeName(const Preference& preference) {
    return Join(preference.category, preference.key);
  }

  explicit QtSettings(Size size) : size_(size), file_(GetFile(size, "qsettings.ini")) {}

  void WriteFiles() {
    std::filesystem::remove(file_);
    Open();
    WriteEach(size_,
              [this](const std::string& category, const std::string& key, const auto& value) {
                settings_->setValue(Join(category, key), MakeValue(value));
              });
    Save();
  }
  /// Sections are parsed when they are needed: here, when the groups are listed.
  void Load() {
    Open();
    settings_->childGroups();
  }
  /// A file of which Qt believes that it did not change would not be read again.
  void Unload() {
    settings_.reset();
    file_time_ += std::chrono::seconds(1);
    std::filesystem::last_write_time(file_, file_time_);
  }
  void Save() { settings_->sync(); }

  int ReadInt(const Name& name) const { return settings_->value(name).toInt(); }
  QString ReadText(const Name& name) const { return settings_->value(name).toString(); }
  bool WriteInt(const Name& name, int value) {
    settings_->setValue(name, value);
    return true;
  }
  bool Insert(const Name& name, int value) { return WriteInt(name, value); }
  void Delete(const Name& name) { settings_->remove(name); }

 private:
  static Name Join(const std::string& category, const std::string& key) {
    return QString::fromStdString(category).replace('\\', '|') + '/' + QString::fromStdString(key);
  }

  template <typename T>
  static QVariant MakeValue(const T& value) {
    return value;
  }
  static QVariant MakeValue(const std::string& text) { return QString::fromStdString(text); }

  void Open() {
    settings_ = std::make_unique<QSettings>(QString::fromStdString(file_), QSettings::IniFormat);
  }

  const Size size_;
  const std::string file_;
  std::filesystem::file_time_type file_time_ = std::filesystem::file_time_type::clock::now();
  std::unique_ptr<QSettings> settings_;
};

}  // namespace vemora::bench
