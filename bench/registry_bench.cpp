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

UniqueKey OpenKey(const vemora_ustring& path) {
  HKEY key = nullptr;
  Expect(RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS);
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

/// The least that a read can do which keeps no key open.
void OpenQueryClose(State& state, Size /*size*/) {
  GetUncachedNames();
  const auto make = [](const Preference& preference) {
    Ours::Name name = MakeUncachedName(preference);
    name.category = kPath + L"\\" + name.category;
    return name;
  };
  Run(state, MakeParts(GetSequence(Size::kS, Kind::kInt, true), make),
      [](const Ours::Name& name) { return QueryInt(OpenKey(name.category).get(), name.key); });
}

}  // namespace

void RegisterRegistryBenchmarks(Size size) {
  if (size != Size::kL) {
    Register("registry, cached", size, Ours::kName, ReadCached);
  }
  if (size == Size::kS) {
    Register("registry, uncached", size, Ours::kName, ReadUncached);
    Register("registry, uncached", size, "open, query, close", OpenQueryClose);
  }
}

}  // namespace vemora::bench
