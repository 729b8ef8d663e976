// Any bytes as the text of a preference file: what the library reads from them is what RapidJSON's
// reader finds in them.
#include <rapidjson/reader.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <memory>
#include <optional>

#include "fuzz/fuzz_support.h"
#include "prefs/JsonReader.h"

namespace {

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)
using vemora::prefs::LoadedLevels;
using vemora::prefs::Preference;
using vemora::prefs::PreferenceMap;

constexpr EShareLevel kFirstLevel = vemora::prefs::kSharedForAllComputers;
constexpr EShareLevel kLastLevel = vemora::prefs::kAndroidOnly;

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
using Levels = std::array<std::optional<Categories>, vemora::prefs::kShareLevelCount>;

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

/// Makes the levels of what RapidJSON finds.
struct Handler : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Handler> {
  Levels levels;
  std::size_t members_of_root = 0;
  std::size_t category = 0;  // the one that is read, of the level
  std::vector<bool> taken;   // of the objects and arrays that are open
  vemora_ustring name;

  bool IsIn(std::size_t depth) const {
    return taken.size() == depth && std::find(taken.begin(), taken.end(), false) == taken.end();
  }
  std::size_t Level() const { return kFirstLevel + members_of_root - 1; }
  std::vector<Entry>& EntriesBeingRead() { return (*levels[Level()])[category].entries; }

  bool Add(const Value& value) {
    if (IsIn(3)) {
      FindOrAdd(EntriesBeingRead(), name).value = value;
    }
    return true;
  }

  bool Null() { return true; }
  bool Bool(bool value) { return Add(value); }
  bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    return Add(vemora_ustring::FromUtf8(std::string_view(text, length)));
  }
  bool RawNumber(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    const std::string number(text, length);
    if (number.find_first_of(".eE") == std::string::npos) {
      errno = 0;
      const long long whole = std::strtoll(number.c_str(), nullptr, 10);
      if (errno == 0) {
        return whole != static_cast<int>(whole) || Add(static_cast<int>(whole));
      }
      errno = 0;
      static_cast<void>(std::strtoull(number.c_str(), nullptr, 10));
      if (errno == 0 && number.front() != '-') {
        return true;
      }
    }
    const double real = std::strtod(number.c_str(), nullptr);
    return std::isfinite(real) && Add(ToBits(real));
  }
  bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    if (IsIn(taken.size())) {
      name = vemora_ustring::FromUtf8(std::string_view(text, length));
      members_of_root += taken.size() == 1 ? 1 : 0;
    }
    return true;
  }
  bool StartObject() {
    bool takes = IsIn(taken.size()) && taken.size() <= 2;
    if (takes && taken.size() == 1) {
      takes = Level() <= kLastLevel;
      if (takes) {
        levels[Level()].emplace();
      }
    } else if (takes && taken.size() == 2) {
      Categories& categories = *levels[Level()];
      const Category& found = FindOrAdd(categories, name);
      category = static_cast<std::size_t>(&found - categories.data());
      EntriesBeingRead().clear();
    }
    taken.push_back(takes);
    return true;
  }
  bool EndObject(rapidjson::SizeType /*members*/) { return EndArray(0); }
  bool StartArray() {
    taken.push_back(false);
    return true;
  }
  bool EndArray(rapidjson::SizeType /*elements*/) {
    taken.pop_back();
    return true;
  }
};

bool IsEscapedSurrogate(std::string_view text, char first, char last) {
  const auto is_hex = [](char digit) {
    return std::string_view("0123456789abcdefABCDEF").find(digit) != std::string_view::npos;
  };
  return text.size() >= 6 && text.substr(0, 2) == "\\u" && (text[2] | 0x20) == 'd' &&
         (text[3] | 0x20) >= first && (text[3] | 0x20) <= last && is_hex(text[3]) &&
         is_hex(text[4]) && is_hex(text[5]);
}

/// RapidJSON takes lone surrogates raw only.
std::string UnescapeLoneSurrogates(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const bool high = IsEscapedSurrogate(text, '8', 'b');
    std::size_t taken = text.front() == '\\' ? std::min<std::size_t>(text.size(), 2) : 1;
    if (high && IsEscapedSurrogate(text.substr(6), 'c', 'f')) {
      taken = 12;
    } else if (high || IsEscapedSurrogate(text, 'c', 'f')) {
      unsigned unit = 0;
      std::from_chars(text.data() + 2, text.data() + 6, unit, 16);
      result += {static_cast<char>(0xE0 | unit >> 12), static_cast<char>(0x80 | (unit >> 6 & 0x3F)),
                 static_cast<char>(0x80 | (unit & 0x3F))};
      text.remove_prefix(6);
      continue;
    }
    result += text.substr(0, taken);
    text.remove_prefix(taken);
  }
  return result;
}

Levels ReadWithRapidJson(std::string_view text) {
  std::string copy = UnescapeLoneSurrogates(text);
  const bool marked = copy.compare(0, 3, "\xEF\xBB\xBF") == 0;
  rapidjson::InsituStringStream stream(copy.data() + (marked ? 3 : 0));
  constexpr unsigned kFlags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag |
                              rapidjson::kParseNumbersAsStringsFlag;
  Handler handler;
  if (rapidjson::Reader().Parse<kFlags>(stream, handler).IsError()) {
    return {};
  }
  Sort(handler.levels);
  return handler.levels;
}

/// Checks that what the store keeps is UTF-8 as it writes it.
vemora_ustring FromStored(std::string_view utf8) {
  vemora_ustring text = vemora_ustring::FromUtf8(utf8);
  Check(text.ToUtf8() == utf8, "ill-formed bytes are replaced");
  return text;
}

Categories CategoriesOf(const PreferenceMap& map) {
  Categories categories;
  for (const PreferenceMap::Category& category : map.GetCategories()) {
    categories.push_back({FromStored(category.name), {}});
    for (const Preference* const preference : map.GetPreferences(category)) {
      categories.back().entries.push_back(
          {vemora_ustring::FromUtf8(preference->Name()), ToValue(map.GetValue(*preference))});
    }
  }
  return categories;
}

Levels ReadWithLibrary(std::string_view text) {
  // As large as it must be, so that reading behind it is noticed.
  const auto buffer = std::make_unique<char[]>(text.size() + 1);
  std::copy(text.begin(), text.end(), buffer.get());
  const LoadedLevels loaded =
      vemora::prefs::ReadLevels(buffer.get(), text.size(), kFirstLevel, kLastLevel);
  Levels levels;
  for (std::size_t level = 0; level < loaded.size(); ++level) {
    if (loaded[level].has_value()) {
      levels[level] = CategoriesOf(*loaded[level]);
    }
  }
  return levels;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  UseUnicodeLocale();
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Check(ReadWithLibrary(text) == ReadWithRapidJson(text),
        "a text holds for the library what it holds for RapidJSON");
  return 0;
}
