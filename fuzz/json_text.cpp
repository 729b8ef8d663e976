// Any bytes as the text of a preference file: what the library reads from them is what a parser of
// this file finds in them, which has nothing in common with the library's.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <memory>
#include <optional>

#include "fuzz/fuzz_support.h"
#include "prefs/json/LevelsReader.h"
#include "prefs/store/LevelTable.h"

namespace {

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)
using vemora::prefs::CategoryRecord;
using vemora::prefs::LevelTable;
using vemora::prefs::PreferenceRecord;

constexpr std::size_t kLevels = 6;

struct Entry {
  vemora_ustring name;
  Value value;
  bool operator==(const Entry& other) const { return name == other.name && value == other.value; }
};

struct Category {
  vemora_ustring name;
  std::vector<Entry> entries;
  bool operator==(const Category& other) const {
    return name == other.name && entries == other.entries;
  }
};

using Categories = std::vector<Category>;
using Levels = std::array<std::optional<Categories>, kLevels>;

/// The one with that name, added when there is none.
template <typename Named>
Named& FindOrAdd(std::vector<Named>& all, const vemora_ustring& name) {
  const auto found = std::find_if(all.begin(), all.end(), [&name](const Named& one) {
    return one.name.CompareNoCase(name) == 0;
  });
  return found != all.end() ? *found : all.emplace_back(Named{name, {}});
}

template <typename Named>
void Sort(std::vector<Named>& all) {
  std::sort(all.begin(), all.end(), [](const Named& left, const Named& right) {
    return left.name.CompareNoCase(right.name) < 0;
  });
}

void Sort(Levels& levels) {
  for (auto& level : levels) {
    if (level.has_value()) {
      Sort(*level);
      for (Category& category : *level) {
        Sort(category.entries);
      }
    }
  }
}

bool IsEmpty(const Levels& levels) {
  return std::none_of(levels.begin(), levels.end(),
                      [](const auto& level) { return level.has_value(); });
}

/// Parses the text from its front to its end, character by character.
class Parser {
 public:
  explicit Parser(std::string_view text) : rest_(text.substr(0, text.find('\0'))) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (rest_.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
      rest_.remove_prefix(kByteOrderMark.size());
    }
  }

  /// Nothing of a malformed text.
  Levels Read() {
    Levels levels;
    std::size_t members = 0;
    SkipSpace();
    ReadObjectOrOther([&](const vemora_ustring& /*name*/) {
      const std::size_t level = members++;
      if (Peek() == '{' && level < kLevels) {
        ReadLevel(levels[level].emplace());
      } else {
        ReadValue();
      }
    });
    SkipSpace();
    Require(rest_.empty());
    Sort(levels);
    return good_ ? levels : Levels();
  }

  /// Whether there is a number that a double can hold, but whose digits or power RapidJSON may find
  /// too many to look at the rest.
  bool HasLongNumber() const { return has_long_number_; }

 private:
  void ReadLevel(Categories& categories) {
    ReadObjectOrOther([&](const vemora_ustring& name) {
      if (Peek() != '{') {
        ReadValue();
        return;
      }
      std::vector<Entry>& entries = FindOrAdd(categories, name).entries;
      entries.clear();
      ReadObjectOrOther([&](const vemora_ustring& key) {
        const Value value = ReadValue();
        if (!IsNothing(value)) {
          FindOrAdd(entries, key).value = value;
        }
      });
    });
  }

  char Peek() const { return rest_.empty() ? '\0' : rest_.front(); }

  bool Skip(char expected) {
    const bool found = !rest_.empty() && rest_.front() == expected;
    rest_.remove_prefix(found ? 1 : 0);
    return found;
  }

  /// A text that is malformed has no rest, so that nothing goes on.
  void Require(bool holds) {
    good_ = good_ && holds;
    if (!good_) {
      rest_ = {};
    }
  }

  void SkipSpace() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size()));
  }

  /// Calls `readMember` with the name of each member of an object, before its value.
  template <typename ReadMember>
  void ReadObjectOrOther(ReadMember readMember) {
    if (!Skip('{')) {
      ReadValue();
      return;
    }
    SkipSpace();
    if (Skip('}')) {
      return;
    }
    do {
      readMember(ReadName());
      SkipSpace();
    } while (Skip(','));
    Require(Skip('}'));
  }

  /// With the colon and the space behind it.
  vemora_ustring ReadName() {
    SkipSpace();
    vemora_ustring name = ReadString();
    SkipSpace();
    Require(Skip(':'));
    SkipSpace();
    return name;
  }

  /// Nothing for a value that no preference has.
  Value ReadValue() {
    switch (Peek()) {
      case '{':
      case '[':
        SkipNested();
        return {};
      case '"':
        return ReadString();
      case 't':
        SkipWord("true");
        return true;
      case 'f':
        SkipWord("false");
        return false;
      case 'n':
        SkipWord("null");
        return {};
      default:
        return ReadNumber();
    }
  }

  void SkipWord(std::string_view word) {
    Require(rest_.substr(0, word.size()) == word);
    rest_.remove_prefix(std::min(word.size(), rest_.size()));
  }

  /// Objects and arrays within one another, without recursion.
  void SkipNested() {
    std::string closing;
    do {
      const char opening = Peek();
      if (opening == '{' || opening == '[') {
        rest_.remove_prefix(1);
        closing.push_back(opening == '{' ? '}' : ']');
        SkipSpace();
        if (Peek() != closing.back()) {
          SkipNameIn(closing);
          continue;
        }
      } else {
        ReadValue();
        SkipSpace();
      }
      while (!closing.empty() && Skip(closing.back())) {
        closing.pop_back();
        SkipSpace();
      }
      if (!closing.empty()) {
        Require(Skip(','));
        SkipSpace();
        SkipNameIn(closing);
      }
    } while (good_ && !closing.empty());
  }

  void SkipNameIn(const std::string& closing) {
    if (closing.back() == '}') {
      ReadName();
    }
  }

  vemora_ustring ReadString() {
    vemora_ustring text;
    Require(Skip('"'));
    while (good_ && !Skip('"')) {
      if (Skip('\\')) {
        text.push_back(ReadEscape());
        continue;
      }
      const auto is_plain = [](char character) {
        return static_cast<unsigned char>(character) >= 0x20 && character != '"' &&
               character != '\\';
      };
      const auto end = std::find_if_not(rest_.begin(), rest_.end(), is_plain);
      const auto count = static_cast<std::size_t>(end - rest_.begin());
      Require(count != 0);
      text += vemora_ustring::FromUtf8(rest_.substr(0, count));
      rest_.remove_prefix(std::min(count, rest_.size()));
    }
    return text;
  }

  CodeUnit ReadEscape() {
    constexpr std::string_view kNames = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    if (Skip('u')) {
      return ReadHexadecimal();
    }
    const std::size_t index = rest_.empty() ? std::string_view::npos : kNames.find(rest_.front());
    Require(index != std::string_view::npos);
    if (!good_) {
      return 0;
    }
    rest_.remove_prefix(1);
    return static_cast<CodeUnit>(kMeanings[index]);
  }

  CodeUnit ReadHexadecimal() {
    constexpr std::string_view kDigits = "0123456789abcdef0123456789ABCDEF";
    unsigned unit = 0;
    for (int digit = 0; digit < 4; ++digit) {
      const std::size_t index =
          rest_.empty() ? std::string_view::npos : kDigits.find(rest_.front());
      Require(index != std::string_view::npos);
      unit = unit * 16 + static_cast<unsigned>(index % 16);
      rest_.remove_prefix(std::min<std::size_t>(1, rest_.size()));
    }
    return static_cast<CodeUnit>(unit);
  }

  std::size_t SkipDigits() {
    const std::size_t count = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
    rest_.remove_prefix(count);
    return count;
  }

  Value ReadNumber() {
    const std::string_view start = rest_;
    Skip('-');
    const std::size_t whole = Skip('0') ? 1 : SkipDigits();
    bool is_whole = true;
    bool well_formed = whole != 0;
    if (Skip('.')) {
      is_whole = false;
      well_formed = SkipDigits() != 0 && well_formed;
    }
    if (Skip('e') || Skip('E')) {
      is_whole = false;
      well_formed = SkipPower() && well_formed;
    }
    constexpr std::size_t kMostDigits = 308;
    has_long_number_ = has_long_number_ || whole > kMostDigits;
    Require(well_formed);
    return good_ ? ToNumber(std::string(start.substr(0, start.size() - rest_.size())), is_whole)
                 : Value();
  }

  bool SkipPower() {
    const bool negative = Skip('-');
    if (!negative) {
      Skip('+');
    }
    const std::string_view start = rest_;
    const std::string digits(start.substr(0, SkipDigits()));
    constexpr double kLargestPower = 308;
    has_long_number_ =
        has_long_number_ || (!negative && std::strtod(digits.c_str(), nullptr) > kLargestPower);
    return !digits.empty();
  }

  Value ToNumber(const std::string& number, bool isWhole) {
    if (isWhole) {
      errno = 0;
      const long long whole = std::strtoll(number.c_str(), nullptr, 10);
      if (errno == 0) {
        return whole == static_cast<int>(whole) ? Value(static_cast<int>(whole)) : Value();
      }
      errno = 0;
      static_cast<void>(std::strtoull(number.c_str(), nullptr, 10));
      if (errno == 0 && number.front() != '-') {
        return {};
      }
    }
    const double real = std::strtod(number.c_str(), nullptr);
    Require(std::isfinite(real));
    return ToBits(real);
  }

  std::string_view rest_;
  bool good_ = true;
  bool has_long_number_ = false;
};

/// Checks that what the store keeps is UTF-8 as it writes it.
vemora_ustring FromStored(std::string_view utf8) {
  vemora_ustring text = vemora_ustring::FromUtf8(utf8);
  Check(text.ToUtf8() == utf8, "ill-formed bytes are replaced");
  return text;
}

Categories CategoriesOf(const LevelTable& table) {
  Categories categories;
  for (const CategoryRecord* category : table.GetCategories()) {
    categories.push_back({FromStored(category->Name()), {}});
    for (const PreferenceRecord* preference : table.GetPreferences(*category)) {
      categories.back().entries.push_back(
          {FromStored(preference->Name()),
           ToValue(vemora::prefs::ToVariant(table.GetValue(*preference)))});
    }
  }
  return categories;
}

Levels ReadWithLibrary(std::string_view text) {
  // As large as it must be, so that reading behind it is noticed.
  const auto buffer = std::make_unique<char[]>(text.size() + 1);
  std::copy(text.begin(), text.end(), buffer.get());
  vemora::prefs::TextFindings findings;
  const auto loaded = vemora::prefs::ReadLevels(buffer.get(), text.size(), kLevels, findings);
  Check(loaded.size() == kLevels, "there is an answer for each level");
  Levels levels;
  for (std::size_t level = 0; level < kLevels; ++level) {
    if (loaded[level].has_value()) {
      levels[level] = CategoriesOf(**loaded[level]);
    }
  }
  return levels;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  UseUnicodeLocale();
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Parser parser(text);
  const Levels expected = parser.Read();
  const Levels read = ReadWithLibrary(text);
  Check(read == expected || (parser.HasLongNumber() && IsEmpty(read)),
        "a text holds for the library what it holds for another parser");
  return 0;
}
