// The lists of keys and values, over whatever other programs leave in the registry.

#include <windows.h>

#include <winternl.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include "failing_allocator.h"
#include "faults.h"
#include "handle_count.h"
#include "registry_key.h"
#include "support.h"
#include "utils/Registry.h"

namespace vemora::utils {

bool operator==(const RegistryValue& left, const RegistryValue& right) {
  return std::tie(left.name, left.type, left.bytes) ==
         std::tie(right.name, right.type, right.bytes);
}

void PrintTo(const RegistryValue& value, std::ostream* out) {
  *out << value.name.ToUtf8() << ", type " << value.type << ", "
       << ::testing::PrintToString(value.bytes.substr(0, 64));
}

namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
using testing::Succeeds;
using ::testing::UnorderedElementsAre;

constexpr wchar_t kCategory[] = L"Window";

const HKEY kRoot = HKEY_CURRENT_USER;

class RegistryEnumeration : public ::testing::Test {
 protected:
  void SetRaw(const vemora_ustring& category, const vemora_ustring& name, DWORD type,
              const std::string& bytes) const {
    // The system adds a zero to a text when it finds one behind it.
    const std::string guarded = bytes + "\xFF\xFF\xFF\xFF";
    ASSERT_EQ(RegSetKeyValueW(kRoot, (key.path() + L'\\' + category).c_str(), name.c_str(), type,
                              guarded.data(), static_cast<DWORD>(bytes.size())),
              ERROR_SUCCESS);
  }

  /// As native programs can: with any units in the name.
  void SetNative(const std::wstring& name) const {
    HKEY category = nullptr;
    ASSERT_EQ(RegCreateKeyW(kRoot, (key.path() + L'\\' + kCategory).c_str(), &category),
              ERROR_SUCCESS);
    std::wstring units = name;
    UNICODE_STRING counted{};
    counted.Length = static_cast<USHORT>(units.size() * sizeof(wchar_t));
    counted.MaximumLength = counted.Length;
    counted.Buffer = units.data();
    using SetValueKey =
        NTSTATUS(NTAPI*)(HANDLE, const UNICODE_STRING*, ULONG, ULONG, const void*, ULONG);
    const auto set = reinterpret_cast<SetValueKey>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtSetValueKey")));
    EXPECT_EQ(set(category, &counted, 0, REG_BINARY, "x", 1), 0);
    RegCloseKey(category);
  }

  std::optional<std::vector<vemora_ustring>> Keys(const vemora_ustring& category = L"") const {
    return Registry::EnumerateKeys(kRoot, key.path(), category);
  }
  std::optional<std::vector<RegistryValue>> Values(
      const vemora_ustring& category = kCategory) const {
    return Registry::EnumerateValues(kRoot, key.path(), category);
  }

  const testing::RegistryKey key;
};

using RegistryEnumerateKeys = RegistryEnumeration;
using RegistryEnumerateValues = RegistryEnumeration;

TEST_F(RegistryEnumerateKeys, GivesNothingForAMissingKeyAndCreatesNothing) {
  EXPECT_EQ(Keys(L"Missing"), std::nullopt);
  EXPECT_FALSE(Registry::PathExists(kRoot, key.path()));
}

TEST_F(RegistryEnumerateKeys, GivesAnEmptyListForAKeyWithoutSubkeys) {
  key.Create();
  EXPECT_THAT(Keys(), Optional(IsEmpty()));
}

TEST_F(RegistryEnumerateKeys, GivesDirectSubkeysOnly) {
  key.SetDword(L"a\\deep", L"n", 1);
  key.SetDword(L"b", L"n", 1);
  EXPECT_THAT(Keys(), Optional(UnorderedElementsAre(L"a", L"b")));
}

TEST_F(RegistryEnumerateKeys, OfACategoryAreThoseBelowIt) {
  key.SetDword(L"a\\deep", L"n", 1);
  EXPECT_THAT(Keys(L"a"), Optional(ElementsAre(L"deep")));
}

TEST_F(RegistryEnumerateKeys, WithoutAPathAreThoseOfTheCategory) {
  key.SetDword(L"a", L"n", 1);
  EXPECT_THAT(Registry::EnumerateKeys(kRoot, L"", key.path()), Optional(ElementsAre(L"a")));
}

TEST_F(RegistryEnumerateKeys, HaveNonAsciiAndLongestNames) {
  const vemora_ustring longest(255, L'\u3042');
  key.SetDword(longest, L"n", 1);
  key.SetDword(L"gr\u00F6\u00DFe \U0001F600", L"n", 1);
  EXPECT_THAT(Keys(), Optional(UnorderedElementsAre(longest, L"gr\u00F6\u00DFe \U0001F600")));
}

TEST_F(RegistryEnumerateKeys, AreThousands) {
  for (int index = 0; index < 2'000; ++index) {
    key.SetDword(std::to_wstring(index), L"n", 1);
  }
  EXPECT_EQ(Keys()->size(), 2'000U);
}

TEST_F(RegistryEnumerateKeys, RefusesNamesWithAZero) {
  key.SetDword(L"a", L"n", 1);
  EXPECT_EQ(Keys(L"a\0b"s), std::nullopt);
}

TEST_F(RegistryEnumerateValues, GivesNothingForAMissingKeyAndCreatesNothing) {
  key.Create();
  EXPECT_EQ(Values(L"Missing"), std::nullopt);
  EXPECT_FALSE(Registry::KeyExists(kRoot, key.path(), L"Missing"));
}

TEST_F(RegistryEnumerateValues, GivesAnEmptyListForAKeyWithoutValues) {
  key.SetDword(L"Window\\deep", L"n", 1);
  EXPECT_THAT(Values(), Optional(IsEmpty()));
}

TEST_F(RegistryEnumerateValues, GivesWhatWasSaved) {
  Registry::SaveInt(kRoot, key.path(), kCategory, L"int", 258);
  Registry::SaveBool(kRoot, key.path(), kCategory, L"bool", true);
  Registry::SaveString(kRoot, key.path(), kCategory, L"text", L"\u00E4");
  Registry::SaveBinary(kRoot, key.path(), kCategory, L"bytes", "a\0b"s);
  EXPECT_THAT(Values(),
              Optional(UnorderedElementsAre(RegistryValue{L"int", REG_DWORD, "\2\1\0\0"s},
                                            RegistryValue{L"bool", REG_DWORD, "\1\0\0\0"s},
                                            RegistryValue{L"text", REG_SZ, "\xE4\0\0\0"s},
                                            RegistryValue{L"bytes", REG_BINARY, "a\0b"s})));
}

TEST_F(RegistryEnumerateValues, WithoutACategoryAreThoseOfThePath) {
  Registry::SaveBinary(kRoot, key.path(), L"", L"n", "x");
  EXPECT_THAT(Values(L""), Optional(ElementsAre(RegistryValue{L"n", REG_BINARY, "x"})));
}

TEST_F(RegistryEnumerateValues, HaveTheDefaultValueWithoutAName) {
  SetRaw(kCategory, L"", REG_SZ, "x\0\0\0"s);
  EXPECT_THAT(Values(), Optional(ElementsAre(RegistryValue{L"", REG_SZ, "x\0\0\0"s})));
}

TEST_F(RegistryEnumerateValues, HaveWhateverTypeAndBytesWereStored) {
  SetRaw(kCategory, L"short", REG_DWORD, "\1");
  SetRaw(kCategory, L"odd", REG_SZ, "abc");
  SetRaw(kCategory, L"none", REG_NONE, "");
  SetRaw(kCategory, L"unknown", 0xFFFF'FFFF, "xy");
  EXPECT_THAT(
      Values(),
      Optional(UnorderedElementsAre(
          RegistryValue{L"short", REG_DWORD, "\1"}, RegistryValue{L"odd", REG_SZ, "abc"},
          RegistryValue{L"none", REG_NONE, ""}, RegistryValue{L"unknown", 0xFFFF'FFFF, "xy"})));
}

TEST_F(RegistryEnumerateValues, HaveNamesOfAnyUnits) {
  SetNative(L"zero\0inside"s);
  SetNative(L"\xD800 lone");
  EXPECT_THAT(Values(),
              Optional(UnorderedElementsAre(RegistryValue{L"zero\0inside"s, REG_BINARY, "x"},
                                            RegistryValue{L"\xD800 lone", REG_BINARY, "x"})));
}

TEST_F(RegistryEnumerateValues, HaveTheLongestNames) {
  const std::wstring longest(16'383, L'n');
  SetNative(longest);
  EXPECT_THAT(Values(), Optional(ElementsAre(RegistryValue{longest, REG_BINARY, "x"})));
}

TEST_F(RegistryEnumerateValues, HaveLargeBytesBetweenSmallOnes) {
  const std::string large(1 << 20, 'y');
  Registry::SaveBinary(kRoot, key.path(), kCategory, L"a", "x");
  Registry::SaveBinary(kRoot, key.path(), kCategory, L"b", large);
  Registry::SaveBinary(kRoot, key.path(), kCategory, L"c", "z");
  EXPECT_THAT(Values(), Optional(UnorderedElementsAre(RegistryValue{L"a", REG_BINARY, "x"},
                                                      RegistryValue{L"b", REG_BINARY, large},
                                                      RegistryValue{L"c", REG_BINARY, "z"})));
}

TEST_F(RegistryEnumerateValues, AreThousands) {
  for (int index = 0; index < 5'000; ++index) {
    key.SetDword(kCategory, std::to_wstring(index), 1);
  }
  EXPECT_EQ(Values()->size(), 5'000U);
}

// A value that grows between two calls for it.
TEST_F(RegistryEnumerateValues, FollowAValueThatGrowsMeanwhile) {
  std::string bytes(300, 'x');
  Registry::SaveBinary(kRoot, key.path(), kCategory, L"a", bytes);
  const testing::Fault grows =
      testing::MakeFault<testing::imports::kEnumValue, decltype(RegEnumValueW)>(
          "grows", [&](auto original, auto... arguments) {
            bytes.resize(700, 'x');
            Registry::SaveBinary(kRoot, key.path(), kCategory, L"a", bytes);
            return original(arguments...);
          });
  std::optional<std::vector<RegistryValue>> values;
  EXPECT_TRUE(testing::MeetsFault(grows, GetModuleHandleW(nullptr), 1, [&] { values = Values(); }));
  EXPECT_EQ(bytes.size(), 700U);
  EXPECT_THAT(values, Optional(ElementsAre(RegistryValue{L"a", REG_BINARY, bytes})));
}

// --- what fails ------------------------------------------------------------------------------

/// One of the lists, and what the system answers to it that is no list.
class RegistryEnumerationRefused : public RegistryEnumeration {
 protected:
  RegistryEnumerationRefused() {
    for (const wchar_t* const name : {L"a", L"b", L"c"}) {
      key.SetDword(std::wstring(kCategory) + L'\\' + name, name, 1);
      key.SetDword(kCategory, name, 1);
    }
  }

  template <typename List>
  static void ExpectNothing(const testing::Fault& fault, const List& list) {
    const std::size_t handles = testing::CountHandles();
    int call = 0;
    bool given = false;
    while (testing::MeetsFault(fault, GetModuleHandleW(nullptr), call,
                               [&] { given = list().has_value(); })) {
      EXPECT_FALSE(given) << fault.name << ", call " << call;
      EXPECT_EQ(testing::CountHandles(), handles) << fault.name << ", call " << call;
      ++call;
    }
    EXPECT_GT(call, 0) << fault.name;
    EXPECT_TRUE(given) << fault.name;
  }

  /// Runs out of memory at every allocation in turn, and leaves no key open.
  static void ExpectNoHandleLeft(const std::function<void()>& list) {
    list();
    Succeeds(0, list);  // whatever is opened once is open now
    const std::size_t handles = testing::CountHandles();
    int allocations = 0;
    while (!Succeeds(allocations, list)) {
      EXPECT_EQ(testing::CountHandles(), handles) << allocations << " allocations";
      ++allocations;
    }
    EXPECT_GT(allocations, 0);
  }
};

TEST_F(RegistryEnumerationRefused, KeysAreAllOrNothing) {
  const auto list = [this] { return Keys(kCategory); };
  ExpectNothing(testing::faults::KeyCannotBeOpened(), list);
  ExpectNothing(testing::MakeFault<testing::imports::kEnumKey, decltype(RegEnumKeyExW)>(
                    "KeysCannotBeListed", [](auto...) -> LSTATUS { return ERROR_ACCESS_DENIED; }),
                list);
}

TEST_F(RegistryEnumerationRefused, ValuesAreAllOrNothing) {
  const auto list = [this] { return Values(); };
  ExpectNothing(testing::faults::KeyCannotBeOpened(), list);
  ExpectNothing(testing::MakeFault<testing::imports::kEnumValue, decltype(RegEnumValueW)>(
                    "ValuesCannotBeListed", [](auto...) -> LSTATUS { return ERROR_ACCESS_DENIED; }),
                list);
}

TEST_F(RegistryEnumerationRefused, KeysOutOfMemoryLeaveNoKeyOpen) {
  ExpectNoHandleLeft([this] { Keys(kCategory); });
}

TEST_F(RegistryEnumerationRefused, ValuesOutOfMemoryLeaveNoKeyOpen) {
  ExpectNoHandleLeft([this] { Values(); });
}

}  // namespace
}  // namespace vemora::utils
