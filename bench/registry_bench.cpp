#include <windows.h>

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <variant>

#include "prefs/Preferences.h"
#include "prefs/PreferencesRegistry.h"
#include "run.h"
#include "store_bench.h"
#include "stores/Ours.h"

namespace vemora::bench {
namespace {

using benchmark::State;

const vemora_ustring kPath = LR"(Software\Vendor\Benchmark)";

struct KeyCloser {
  void operator()(HKEY key) const { RegCloseKey(key); }
};
using UniqueKey = std::unique_ptr<HKEY__, KeyCloser>;

void Expect(bool succeeded) {
  if (!succeeded) {
    throw std::runtime_error("the registry does not give what was stored");
  }
}

UniqueKey OpenPath() {
  HKEY key = nullptr;
  Expect(RegOpenKeyExW(HKEY_CURRENT_USER, kPath.c_str(), 0, MAXIMUM_ALLOWED, &key) ==
         ERROR_SUCCESS);
  return UniqueKey(key);
}

/// As the back end opens it: a category that does not exist is made.
UniqueKey OpenCategory(HKEY path, const vemora_ustring& category) {
  HKEY key = nullptr;
  Expect(RegCreateKeyExW(path, category.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_READ,
                         nullptr, &key, nullptr) == ERROR_SUCCESS);
  return UniqueKey(key);
}

int QueryInt(HKEY key, const vemora_ustring& name) {
  int value = 0;
  DWORD size = sizeof(value);
  Expect(RegQueryValueExW(key, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(&value),
                          &size) == ERROR_SUCCESS);
  return value;
}

/// Values that this process wrote, and therefore has in its cache.
void FillCache(Size size) {
  prefs::PreferencesRegistry::SetWriteImmediately(false);
  prefs::SetPath(kPath);
  WriteAll(GetPreferences(size), prefs::Get());
  // At exit nothing is to be written after all.
  prefs::PreferencesRegistry::SetWriteImmediately(true);
}

void ReadCached(State& state, Size size) {
  static std::map<Size, Parts<Ours::Name>> made;
  Parts<Ours::Name>& parts = made[size];
  prefs::SetPath(kPath);
  if (parts.empty()) {
    FillCache(size);
    parts = MakeParts(GetSequence(size, Kind::kInt, size == Size::kS), Ours::MakeName);
  }
  Run(state, parts,
      [](const Ours::Name& name) { return prefs::Get().ReadInt(name.category, name.key, 0); });
}

/// Names that the cache does not have, in categories of their own.
Ours::Name MakeUncachedName(const Preference& preference) {
  return {ToText("Uncached " + preference.category), ToText(preference.key)};
}

const Parts<Ours::Name>& GetUncachedNames() {
  static const Parts<Ours::Name> names = [] {
    const Sequence sequence = GetSequence(Size::kS, Kind::kInt, true);
    prefs::SetPath(kPath);
    for (const Preference* preference : sequence) {
      const Ours::Name name = MakeUncachedName(*preference);
      HKEY key = nullptr;
      Expect(RegCreateKeyW(HKEY_CURRENT_USER, (kPath + L"\\" + name.category).c_str(), &key) ==
             ERROR_SUCCESS);
      const UniqueKey closer(key);
      const int value = std::get<int>(preference->value);
      Expect(RegSetValueExW(key, name.key.c_str(), 0, REG_DWORD,
                            reinterpret_cast<const BYTE*>(&value), sizeof(value)) == ERROR_SUCCESS);
      Expect(prefs::Get().ReadInt(name.category, name.key, value + 1) == value);
    }
    return MakeParts(sequence, MakeUncachedName);
  }();
  return names;
}

void ReadUncached(State& state, Size /*size*/) {
  const Parts<Ours::Name>& names = GetUncachedNames();
  prefs::SetPath(kPath);
  Run(state, names,
      [](const Ours::Name& name) { return prefs::Get().ReadInt(name.category, name.key, 0); });
}

void MakeSameCalls(State& state, Size /*size*/) {
  Run(state, GetUncachedNames(), [](const Ours::Name& name) {
    const UniqueKey path = OpenPath();
    return QueryInt(OpenCategory(path.get(), name.category).get(), name.key);
  });
}

void QueryOpenKeys(State& state, Size /*size*/) {
  struct OpenName {
    std::shared_ptr<HKEY__> category;
    vemora_ustring key;
  };
  GetUncachedNames();
  const UniqueKey path = OpenPath();
  const auto open = [&path](const Preference& preference) {
    const Ours::Name name = MakeUncachedName(preference);
    return OpenName{OpenCategory(path.get(), name.category), name.key};
  };
  Run(state, MakeParts(GetSequence(Size::kS, Kind::kInt, true), open),
      [](const OpenName& name) { return QueryInt(name.category.get(), name.key); });
}

}  // namespace

void RegisterRegistryBenchmarks(Size size) {
  if (size != Size::kL) {
    Register("registry, cached", size, Ours::kName, ReadCached);
  }
  if (size == Size::kS) {
    Register("registry, uncached", size, Ours::kName, ReadUncached)->UseRealTime();
    Register("registry, uncached", size, "same calls", MakeSameCalls)->UseRealTime();
    Register("registry, uncached", size, "open keys", QueryOpenKeys)->UseRealTime();
  }
}

}  // namespace vemora::bench
