#include "RegistryStore.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <set>

#include "Failure.h"
#include "Levels.h"
#include "utils/Registry.h"

namespace vemora::tool {
namespace {

using utils::Registry;
using utils::RegistryValue;

static_assert(kRegistryBinary == REG_BINARY);

constexpr char kRootName[] = "HKEY_CURRENT_USER\\";

Value Decode(const RegistryValue& stored) {
  if (stored.type == REG_DWORD && stored.bytes.size() == sizeof(int)) {
    int number = 0;
    std::memcpy(&number, stored.bytes.data(), sizeof(number));
    return number;
  }
  if (stored.type == REG_SZ) {
    vemora_ustring text(stored.bytes.size() / sizeof(wchar_t), L'\0');
    stored.bytes.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(wchar_t));
    text.resize(std::min(text.find(L'\0'), text.size()));
    return text;
  }
  return Bytes{stored.type, stored.bytes};
}

}  // namespace

RegistryStore::RegistryStore(const std::string& path, Access access)
    : path_(vemora_ustring::FromUtf8(path)) {
  if (access != Access::kMake && !Registry::PathExists(Registry::kCurrentUser, path_)) {
    throw Failure(kUnusable,
                  "there is no key " + std::string(kRootName) + path + "; check --registry");
  }
}

std::vector<Entry> RegistryStore::Read() const {
  std::vector<Entry> entries;
  if (Registry::PathExists(Registry::kCurrentUser, path_)) {
    ReadCategory(L"", entries);
  }
  std::sort(entries.begin(), entries.end(), EntryLess());
  return entries;
}

void RegistryStore::ReadCategory(const vemora_ustring& category,
                                 std::vector<Entry>& entries) const {
  const auto values = Registry::EnumerateValues(Registry::kCurrentUser, path_, category);
  const auto keys = Registry::EnumerateKeys(Registry::kCurrentUser, path_, category);
  if (!values.has_value() || !keys.has_value()) {
    throw Failure(kUnusable, "cannot read the category " + category.ToUtf8() + " of " +
                                 Place(prefs::kThisComputerOnly) + "; check its rights");
  }
  for (const RegistryValue& value : *values) {
    entries.push_back({prefs::kThisComputerOnly, category, value.name, Decode(value)});
  }
  for (const vemora_ustring& key : *keys) {
    ReadCategory(category.empty() ? key : vemora_ustring(category + L'\\' + key), entries);
  }
}

std::optional<Entry> RegistryStore::Find(EShareLevel /*level*/, const vemora_ustring& category,
                                         const vemora_ustring& key) {
  const auto values = Registry::EnumerateValues(Registry::kCurrentUser, path_, category);
  for (const RegistryValue& value : values.value_or(std::vector<RegistryValue>())) {
    if (value.name.CompareNoCase(key) == 0) {
      return Entry{prefs::kThisComputerOnly, category, value.name, Decode(value)};
    }
  }
  return std::nullopt;
}

std::optional<std::string> RegistryStore::Refuses(const Value& value) const {
  const Bytes* const bytes = std::get_if<Bytes>(&value);
  return bytes != nullptr && bytes->type != kRegistryBinary
             ? std::optional<std::string>("the library does not write that type")
             : std::nullopt;
}

void RegistryStore::Write(const Entry& entry) {
  const auto save = [this, &entry](const auto& function, const auto& value) {
    return function(Registry::kCurrentUser, path_, entry.category, entry.key, value);
  };
  struct Visitor {
    const decltype(save)& save;

    bool operator()(int number) const { return save(Registry::SaveInt, number); }
    bool operator()(bool on) const { return save(Registry::SaveBool, on); }
    bool operator()(double number) const { return save(Registry::SaveDouble, number); }
    bool operator()(const vemora_ustring& text) const { return save(Registry::SaveString, text); }
    bool operator()(const Bytes& bytes) const { return save(Registry::SaveBinary, bytes.bytes); }
  };
  if (!std::visit(Visitor{save}, entry.value)) {
    throw Failure(kUnusable, "could not write " + NameOf(entry.category, entry.key) + " to " +
                                 Place(entry.level) + "; check its rights and the length of names");
  }
}

void RegistryStore::Unset(EShareLevel /*level*/, const vemora_ustring& category,
                          const vemora_ustring& key) {
  Registry::DeleteValue(Registry::kCurrentUser, path_, category, key);
}

bool RegistryStore::HasCategory(const vemora_ustring& category) {
  return Registry::EnumerateValues(Registry::kCurrentUser, path_, category).has_value();
}

void RegistryStore::Drop(const vemora_ustring& category) {
  const auto values = Registry::EnumerateValues(Registry::kCurrentUser, path_, category);
  for (const RegistryValue& value : values.value_or(std::vector<RegistryValue>())) {
    Registry::DeleteValue(Registry::kCurrentUser, path_, category, value.name);
  }
  // The key itself stays when it has subcategories.
  Registry::DeleteKey(Registry::kCurrentUser, path_, category);
}

EShareLevel RegistryStore::LevelOf(EShareLevel /*level*/, const vemora_ustring& /*category*/,
                                   const vemora_ustring& /*key*/) {
  return prefs::kThisComputerOnly;
}

std::string RegistryStore::Place(EShareLevel /*level*/) const { return kRootName + path_.ToUtf8(); }

Value AsInRegistry(const Value& value) {
  if (const bool* const on = std::get_if<bool>(&value)) {
    return *on ? 1 : 0;
  }
  if (const double* const number = std::get_if<double>(&value)) {
    std::array<char, 512> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), *number, std::chars_format::fixed, 6)
            .ptr;
    return vemora_ustring(text.data(), end);
  }
  return value;
}

std::vector<Entry> WithoutLevels(const std::vector<Entry>& entries,
                                 std::vector<Problem>& problems) {
  Classifier classifier;
  std::vector<Entry> kept;
  std::set<Pair, PairLess> taken;
  // A host finds what lies at its classified level, else what lies at the lowest.
  const auto take = [&](const Entry& entry) {
    if (taken.emplace(entry.category, entry.key).second) {
      kept.push_back(entry);
    } else {
      problems.push_back({NameOf(entry.category, entry.key),
                          "is left out at the level \"" + LevelName(entry.level) +
                              "\", for it is also at another one"});
    }
  };
  std::vector<Entry> others;
  for (const Entry& entry : entries) {
    if (entry.level > prefs::kWindowsOnly) {
      problems.push_back(
          {NameOf(entry.category, entry.key),
           "is left out, for it is for another platform: " + LevelName(entry.level)});
    } else if (classifier.Find(entry.category, entry.key) == entry.level) {
      take(entry);
    } else {
      others.push_back(entry);
    }
  }
  std::for_each(others.begin(), others.end(), take);
  return kept;
}

}  // namespace vemora::tool
