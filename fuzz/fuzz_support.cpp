#include "fuzz/fuzz_support.h"

#include <rapidjson/document.h>

#include <clocale>
#include <cwctype>
#include <memory>

#include "utils/Files.h"

namespace vemora::fuzz {
namespace {

vemora_ustring ToText(const rapidjson::Value& value) {
  return vemora_ustring::FromUtf8({value.GetString(), value.GetStringLength()});
}

void AppendCategory(const vemora_ustring& name, const rapidjson::Value& object, std::size_t level,
                    SavedCategories& categories) {
  Check(object.IsObject(), "a saved category is an object");
  SavedCategory category = {level, name, {}};
  for (const auto& preference : object.GetObject()) {
    category.keys.push_back(ToText(preference.name));
  }
  categories.push_back(category);
}

void AppendFile(const vemora_ustring& path, std::size_t firstLevel, std::size_t lastLevel,
                SavedCategories& categories) {
  const std::optional<std::string> text = ReadFile(path);
  if (!text) {
    return;
  }
  rapidjson::Document document;
  document.Parse<rapidjson::kParseNumbersAsStringsFlag>(text->data(), text->size());
  Check(!document.HasParseError(), "what is saved parses");
  Check(document.IsObject(), "the root of a saved file is an object");
  std::size_t level = firstLevel;
  for (const auto& member : document.GetObject()) {
    Check(level <= lastLevel, "a saved file has no more members than levels");
    Check(ToText(member.name) == prefs::kShareLevelNames[level], "saved levels have their names");
    Check(member.value.IsObject(), "a saved level is an object");
    for (const auto& category : member.value.GetObject()) {
      AppendCategory(ToText(category.name), category.value, level, categories);
    }
    ++level;
  }
  Check(level == lastLevel + 1, "a saved file has all its levels");
}

}  // namespace

void UseUnicodeLocale() {
  static const bool is_set = std::setlocale(LC_ALL, "C.UTF-8") != nullptr;
  Check(is_set, "the system has the locale C.UTF-8");
}

Folded Fold(const vemora_ustring& name) {
  Folded folded = name;
  for (CodeUnit& unit : folded) {
    const bool surrogate = unit >= 0xD800 && unit <= 0xDFFF;
    unit = surrogate ? unit : static_cast<CodeUnit>(std::towupper(unit));
  }
  return folded;
}

FoldedNames Fold(const vemora_ustring& category, const vemora_ustring& key) {
  return {Fold(category), Fold(key)};
}

std::optional<std::string> ReadFile(const vemora_ustring& path) {
  std::size_t size = 0;
  const std::unique_ptr<char[]> bytes = utils::ReadWholeFile(path, &size);
  return bytes != nullptr ? std::optional(std::string(bytes.get(), size)) : std::nullopt;
}

void WriteFile(const vemora_ustring& path, std::string_view bytes) {
  Check(utils::WriteWholeFile(bytes.data(), bytes.size(), path), "the file can be written");
}

SavedCategories ReadSavedFiles(const vemora_ustring& privateFile,
                               const vemora_ustring& sharedFile) {
  SavedCategories categories;
  AppendFile(privateFile, prefs::kThisComputerOnly, prefs::kThisComputerOnly, categories);
  AppendFile(sharedFile, prefs::kSharedForAllComputers, prefs::kAndroidOnly, categories);
  return categories;
}

}  // namespace vemora::fuzz
