#include "data.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "prefs/PreferencesDefaults.h"

namespace vemora::bench {
namespace {

constexpr std::size_t kMaxSequence = 100'000;

constexpr std::string_view kWords[] = {
    "Window",  "Camera", "Layer",   "Export", "Import",  "Grid",  "Color",    "Shadow", "Recent",
    "Folder",  "Panel",  "Toolbar", "Show",   "Enabled", "Width", "Height",   "Last",   "Default",
    "Quality", "Mode",   "Style",   "Text",   "Font",    "Units", "Snap",     "Angle",  "Limit",
    "Count",   "Update", "Check",   "Proxy",  "Server",  "Cache", "Material", "Scene",  "Tag",
};
constexpr std::string_view kForeignWords[] = {"Größe", "Überblick", "Éclairage",  "Материал",
                                              "Слой",  "設定",      "ウィンドウ", "Çizgi"};

/// The standard library's distributions differ between its makers; this does not.
class Generator {
 public:
  std::size_t Below(std::size_t limit) { return engine_() % limit; }
  bool OneIn(std::size_t count) { return Below(count) == 0; }

  std::string Word() { return std::string(OneIn(20) ? Pick(kForeignWords) : Pick(kWords)); }

  /// The number keeps names apart that would be equal otherwise.
  std::string Category(std::size_t number) {
    std::string name = Word();
    while (OneIn(3)) {
      name += (OneIn(2) ? "\\" : " ") + Word();
    }
    return name + (OneIn(2) ? " " : "") + std::to_string(number);
  }

  std::string Key(std::size_t number) {
    std::string name = Word() + (OneIn(4) ? " " : "") + Word();
    if (OneIn(3)) {
      name += Word();
    }
    return name + std::to_string(number);
  }

  Value MakeValue() {
    const std::size_t percent = Below(100);
    if (percent < 40) {
      return static_cast<int>(Below(100'000)) - 1000;
    }
    if (percent < 70) {
      return OneIn(2);
    }
    if (percent < 85) {
      return static_cast<double>(Below(10'000'000)) / 1000;
    }
    return Text(5 + Below(76));
  }

  std::mt19937_64& engine() { return engine_; }

 private:
  template <std::size_t count>
  std::string_view Pick(const std::string_view (&words)[count]) {
    return words[Below(count)];
  }

  /// ASCII, but for a foreign word here and there in front.
  std::string Text(std::size_t length) {
    std::string text = Word() + " ";
    while (text.size() < length) {
      text += std::string(Pick(kWords)) + " ";
    }
    while (text.size() > length && (text.back() & 0x80) == 0) {
      text.pop_back();
    }
    // Some libraries strip blanks.
    if (text.back() == ' ') {
      text.back() = '.';
    }
    return text;
  }

  std::mt19937_64 engine_{565};
};

void AddClassified(Generator& generator, Preferences& preferences) {
  std::ifstream table(SHARE_LEVELS_FILE);
  for (std::string line; std::getline(table, line);) {
    std::istringstream fields(line);
    Preference preference;
    std::string level;
    std::getline(fields, level, '\t');
    std::getline(fields, preference.category, '\t');
    std::getline(fields, preference.key);
    preference.level = static_cast<EShareLevel>(std::stoul(level));
    preference.classified = true;
    preference.value = generator.MakeValue();
    preferences.push_back(std::move(preference));
  }
  if (preferences.empty()) {
    throw std::runtime_error("cannot read " SHARE_LEVELS_FILE);
  }
}

/// Every third category of a host's own travels with the shared file.
void AddOwn(Generator& generator, std::size_t count, std::size_t categories,
            Preferences& preferences) {
  std::vector<std::string> names;
  for (std::size_t number = 0; number < categories; ++number) {
    names.push_back(generator.Category(number));
  }
  for (std::size_t number = 0; number < count; ++number) {
    const std::size_t category = number % categories;
    const EShareLevel level =
        category % 3 == 0 ? prefs::kSharedForAllComputers : prefs::kThisComputerOnly;
    preferences.push_back(
        {names[category], generator.Key(number / categories), generator.MakeValue(), level, false});
  }
}

Preferences MakePreferences(Size size) {
  constexpr std::size_t kClassified = 565;
  constexpr std::size_t kClassifiedCategories = 102;
  Generator generator;
  Preferences preferences;
  AddClassified(generator, preferences);
  if (size == Size::kM) {
    AddOwn(generator, 10'000 - kClassified, 500 - kClassifiedCategories, preferences);
  } else if (size == Size::kL) {
    AddOwn(generator, 1'000'000 - kClassified, 10'000 - kClassifiedCategories, preferences);
  }
  return preferences;
}

bool IsAscii(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char unit) { return (unit & 0x80) == 0; });
}

bool Is(Kind kind, const Preference& preference) {
  switch (kind) {
    case Kind::kInt:
      return std::holds_alternative<int>(preference.value);
    case Kind::kAsciiInt:
      return Is(Kind::kInt, preference) && IsAscii(preference.category) && IsAscii(preference.key);
    case Kind::kText:
      return std::holds_alternative<std::string>(preference.value);
  }
  return false;
}

void Shuffle(Sequence& sequence) {
  Generator generator;
  for (std::size_t left = sequence.size(); left > 1; --left) {
    std::swap(sequence[left - 1], sequence[generator.Below(left)]);
  }
}

Preferences MakeAbsent(Size size, const std::string& ending) {
  Preferences absent;
  for (const bool classified : {true, false}) {
    for (const Preference* preference : GetSequence(size, Kind::kInt, classified)) {
      absent.push_back(*preference);
      Preference& name = absent.back();
      (absent.size() % 2 == 0 ? name.category : name.key) += ending;
      name.classified = false;
    }
  }
  return absent;
}

struct Writer {
  void operator()(bool truth) const { store.WriteBool(category, key, truth); }
  void operator()(int number) const { store.WriteInt(category, key, number); }
  void operator()(double number) const { store.WriteDouble(category, key, number); }
  void operator()(const std::string& text) const { store.WriteString(category, key, ToText(text)); }

  prefs::IPreferences& store;
  const vemora_ustring category;
  const vemora_ustring key;
};

}  // namespace

const char* GetName(Size size) {
  constexpr const char* kNames[] = {"S", "M", "L"};
  return kNames[static_cast<std::size_t>(size)];
}

Size ToSize(const std::string& name) {
  for (const Size size : kSizes) {
    if (name == GetName(size)) {
      return size;
    }
  }
  throw std::invalid_argument("there is no size " + name);
}

const Preferences& GetPreferences(Size size) {
  static std::map<Size, Preferences> made;
  Preferences& preferences = made[size];
  if (preferences.empty()) {
    preferences = MakePreferences(size);
  }
  return preferences;
}

Sequence GetSequence(Size size, Kind kind, bool classified) {
  Sequence sequence;
  for (const Preference& preference : GetPreferences(size)) {
    if (preference.classified == classified && Is(kind, preference)) {
      sequence.push_back(&preference);
    }
  }
  Shuffle(sequence);
  sequence.resize(std::min(sequence.size(), kMaxSequence));
  return sequence;
}

void WriteAll(const Preferences& preferences, prefs::IPreferences& store) {
  for (const Preference& preference : preferences) {
    const prefs::ShareLevelOverride guard(preference.level);
    std::visit(Writer{store, ToText(preference.category), ToText(preference.key)},
               preference.value);
  }
}

const Sequence& GetAbsent(Size size, const std::string& ending) {
  struct Names {
    Preferences preferences;
    Sequence sequence;
  };
  static std::map<std::pair<Size, std::string>, Names> made;
  Names& names = made[{size, ending}];
  if (names.sequence.empty()) {
    names.preferences = MakeAbsent(size, ending);
    for (const Preference& preference : names.preferences) {
      names.sequence.push_back(&preference);
    }
    Shuffle(names.sequence);
  }
  return names.sequence;
}

}  // namespace vemora::bench
