#include "prefs/JsonReader.h"

#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "prefs/FoldedName.h"
#include "prefs/JsonScanner.h"
#include "utils/Utf8.h"
#include "utils/vemora_ustring.h"

namespace vemora::prefs {

namespace {

/// Ill-formed bytes are replaced, in `buffer`.
std::string_view Replace(std::string_view bytes, std::string& buffer) {
  buffer = utils::vemora_ustring::FromUtf8(bytes).ToUtf8();
  return buffer;
}

/// UTF-8 as the store keeps it, in `buffer` if need be.
std::string_view Normalize(const ScannedText& text, std::string& buffer) {
  return text.ascii || utils::IsWellFormedUtf8(text.bytes) ? text.bytes
                                                           : Replace(text.bytes, buffer);
}

/// A name as the store keeps it, in `buffer` if need be.
struct Name {
  Name(const ScannedText& text, std::string& buffer) : utf8(text.bytes), folded(utf8) {
    if (!folded.IsWellFormed()) {
      utf8 = Replace(utf8, buffer);
    }
  }

  std::string_view utf8;
  FoldedName folded;
};

/// Reads one text. Its functions return false for what is malformed.
class LevelsReader {
 public:
  LevelsReader(char* text, std::size_t size, EShareLevel first, EShareLevel last)
      : scanner_(text, size), next_(first), last_(last) {}

  bool Read() {
    const auto read_member = [this](const ScannedText& /*name*/) { return ReadMemberOfRoot(); };
    return (scanner_.Peek() == '{' ? scanner_.ReadObject(read_member) : scanner_.SkipValue()) &&
           scanner_.Peek() == 0;
  }

  LoadedLevels Take() { return std::move(levels_); }

 private:
  bool ReadMemberOfRoot() {
    const std::size_t level = next_++;
    if (level > last_ || scanner_.Peek() != '{') {
      return scanner_.SkipValue();
    }
    return ReadLevel(levels_[level].emplace());
  }

  bool ReadLevel(PreferenceMap& level) {
    const bool read = scanner_.ReadObject([&](const ScannedText& category) {
      if (scanner_.Peek() != '{') {
        return scanner_.SkipValue();
      }
      const Name name(category, name_);
      level.OpenCategory(name.utf8, name.folded);
      level.EmptyOpenCategory();
      return scanner_.ReadObject(
          [&](const ScannedText& key) { return ReadPreference(level, key); });
    });
    level.CloseCategories();
    return read;
  }

  bool ReadPreference(PreferenceMap& level, const ScannedText& key) {
    switch (scanner_.Peek()) {
      case '{':
      case '[':
        return scanner_.SkipValue();
      case '"': {
        ScannedText text;
        if (!scanner_.ReadString(text)) {
          return false;
        }
        Set(level, key, Normalize(text, text_));
        return true;
      }
      default: {
        PreferenceValue value;
        if (!scanner_.ReadPlainValue(value)) {
          return false;
        }
        if (value.GetKind() != PreferenceValue::kNone) {
          Set(level, key, value);
        }
        return true;
      }
    }
  }

  void Set(PreferenceMap& level, const ScannedText& key, const PreferenceValue& value) {
    const Name name(key, name_);
    level.SetInOpenCategory(name.utf8, name.folded, value);
  }

  JsonScanner scanner_;
  std::size_t next_;  // level
  std::size_t last_;
  LoadedLevels levels_;
  std::string name_;
  std::string text_;
};

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

LoadedLevels ReadLevels(char* text, std::size_t size, EShareLevel first, EShareLevel last) {
  const bool marked = std::strncmp(text, kByteOrderMark.data(), kByteOrderMark.size()) == 0;
  const std::size_t start = marked ? kByteOrderMark.size() : 0;
  LevelsReader reader(text + start, size - start, first, last);
  return reader.Read() ? reader.Take() : LoadedLevels();
}

}  // namespace vemora::prefs
