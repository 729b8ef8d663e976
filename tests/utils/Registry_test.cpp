#include "utils/Registry.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <type_traits>
#include <vector>

#include "faults.h"
#include "handle_count.h"
#include "locale_support.h"
#include "stress.h"
#include "support.h"

namespace vemora::utils {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr wchar_t kCategory[] = L"Window";
constexpr wchar_t kName[] = L"Size";
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

const HKEY kRoot = HKEY_CURRENT_USER;

static_assert(std::is_empty_v<Registry>);
static_assert(std::is_copy_constructible_v<Registry> && std::is_copy_assignable_v<Registry>);
static_assert(std::is_move_constructible_v<Registry> && std::is_move_assignable_v<Registry>);

/// What the registry holds for a value: its type and its bytes.
struct RawValue {
  DWORD type;
  std::string bytes;

  bool operator==(const RawValue& other) const {
    return type == other.type && bytes == other.bytes;
  }
};

void PrintTo(const RawValue& value, std::ostream* out) {
  *out << "type " << value.type << ", " << value.bytes.size() << " bytes "
       << ::testing::PrintToString(value.bytes.substr(0, 64));
}

struct KeyCloser {
  void operator()(HKEY key) const { RegCloseKey(key); }
};
using UniqueKey = std::unique_ptr<HKEY__, KeyCloser>;

// GoogleTest would print what the pointer leads to, but a key is none.
void PrintTo(const UniqueKey& key, std::ostream* out) { *out << key.get(); }

UniqueKey OpenRaw(const vemora_ustring& key_path) {
  HKEY key = nullptr;
  RegOpenKeyExW(kRoot, key_path.c_str(), 0, KEY_ALL_ACCESS, &key);
  return UniqueKey(key);
}

void CreateRaw(const vemora_ustring& key_path) {
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyExW(kRoot, key_path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                            nullptr),
            ERROR_SUCCESS);
  RegCloseKey(key);
}

std::optional<RawValue> ReadRaw(const vemora_ustring& key_path, const vemora_ustring& name) {
  const UniqueKey key = OpenRaw(key_path);
  DWORD type = 0;
  DWORD size = 0;
  if (key == nullptr ||
      RegQueryValueExW(key.get(), name.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::string bytes(size + 1, '\0');
  EXPECT_EQ(RegQueryValueExW(key.get(), name.c_str(), nullptr, &type,
                             reinterpret_cast<BYTE*>(bytes.data()), &size),
            ERROR_SUCCESS);
  bytes.resize(size);
  return RawValue{type, bytes};
}

void WriteRaw(const vemora_ustring& key_path, const vemora_ustring& name, const RawValue& value) {
  // The system adds a zero to a text when it finds one behind it.
  const std::string guarded = value.bytes + "\xFF\xFF\xFF\xFF";
  ASSERT_EQ(RegSetKeyValueW(kRoot, key_path.c_str(), name.c_str(), value.type, guarded.data(),
                            static_cast<DWORD>(value.bytes.size())),
            ERROR_SUCCESS);
  ASSERT_EQ(ReadRaw(key_path, name), value);
}

std::string BytesOf(std::wstring_view text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

RawValue TextValue(const std::wstring& text) { return {REG_SZ, BytesOf(text + L'\0')}; }

RawValue DwordValue(DWORD number) {
  return {REG_DWORD, {reinterpret_cast<const char*>(&number), sizeof(number)}};
}

/// The names of the subkeys of a key.
std::vector<vemora_ustring> SubkeysOf(const vemora_ustring& key_path) {
  const UniqueKey key = OpenRaw(key_path);
  std::vector<vemora_ustring> names;
  wchar_t name[256];
  for (DWORD index = 0;; ++index) {
    DWORD length = 256;
    if (RegEnumKeyExW(key.get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      return names;
    }
    names.emplace_back(name);
  }
}

/// A locale whose decimal point is a comma.
class CommaLocale : public testing::ScopedLocale {
 public:
  CommaLocale() : ScopedLocale("German_Germany.1252") {
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
  }
};

struct Address {
  vemora_ustring path;
  vemora_ustring category;
  vemora_ustring name;
};

/// The two operations of one type; a load tells whether it gave back what it was passed as default.
struct Kind {
  std::string name;
  std::function<bool(HKEY, const Address&)> load_gives_default;
  std::function<bool(HKEY, const Address&)> save;
};

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

const std::vector<Kind>& Kinds() {
  static const std::vector<Kind> kinds = {
      {"Int",
       [](HKEY root, const Address& at) {
         return Registry::LoadInt(root, at.path, at.category, at.name, -77) == -77;
       },
       [](HKEY root, const Address& at) {
         return Registry::SaveInt(root, at.path, at.category, at.name, 99);
       }},
      {"Bool",
       [](HKEY root, const Address& at) {
         return Registry::LoadBool(root, at.path, at.category, at.name, true) &&
                !Registry::LoadBool(root, at.path, at.category, at.name, false);
       },
       [](HKEY root, const Address& at) {
         return Registry::SaveBool(root, at.path, at.category, at.name, true);
       }},
      {"Double",
       [](HKEY root, const Address& at) {
         return Registry::LoadDouble(root, at.path, at.category, at.name, -0.75) == -0.75;
       },
       [](HKEY root, const Address& at) {
         return Registry::SaveDouble(root, at.path, at.category, at.name, 99.0);
       }},
      {"String",
       [](HKEY root, const Address& at) {
         return Registry::LoadStringW(root, at.path, at.category, at.name, L"default") ==
                L"default";
       },
       [](HKEY root, const Address& at) {
         return Registry::SaveString(root, at.path, at.category, at.name, L"text");
       }},
      {"Binary",
       [](HKEY root, const Address& at) {
         return Registry::LoadBinary(root, at.path, at.category, at.name, "a\0b"s) == "a\0b"s;
       },
       [](HKEY root, const Address& at) {
         return Registry::SaveBinary(root, at.path, at.category, at.name, "bytes");
       }}};
  return kinds;
}

void ExpectDefaults(HKEY root, const Address& address) {
  for (const Kind& kind : Kinds()) {
    EXPECT_TRUE(kind.load_gives_default(root, address)) << "Load" << kind.name;
  }
}

void ExpectRefusals(HKEY root, const Address& address) {
  for (const Kind& kind : Kinds()) {
    EXPECT_FALSE(kind.save(root, address)) << "Save" << kind.name;
  }
}

/// A registry key for one test, which exists at no time unless the test makes it.
template <typename Base>
class WithKey : public Base {
 protected:
  void SetUp() override { RemoveKey(); }
  void TearDown() override { RemoveKey(); }

  std::optional<RawValue> Stored() const { return ReadRaw(category_path, kName); }
  void Store(const RawValue& value) const { WriteRaw(category_path, kName, value); }

  int LoadInt(int default_value) const {
    return Registry::LoadInt(kRoot, path, kCategory, kName, default_value);
  }
  bool LoadBool(bool default_value) const {
    return Registry::LoadBool(kRoot, path, kCategory, kName, default_value);
  }
  double LoadDouble(double default_value) const {
    return Registry::LoadDouble(kRoot, path, kCategory, kName, default_value);
  }
  vemora_ustring LoadText(const vemora_ustring& default_value) const {
    return Registry::LoadStringW(kRoot, path, kCategory, kName, default_value);
  }
  std::string LoadBinary(const std::string& default_value) const {
    return Registry::LoadBinary(kRoot, path, kCategory, kName, default_value);
  }
  bool SaveDouble(double value) const {
    return Registry::SaveDouble(kRoot, path, kCategory, kName, value);
  }
  bool SaveText(const vemora_ustring& value) const {
    return Registry::SaveString(kRoot, path, kCategory, kName, value);
  }
  bool SaveBinary(const std::string& value) const {
    return Registry::SaveBinary(kRoot, path, kCategory, kName, value);
  }

  const vemora_ustring path =
      vemora_ustring(LR"(Software\VemoraTests.)") + testing::Utf8(testing::TestName());
  const vemora_ustring category_path = path + L'\\' + kCategory;
  const Address address{path, kCategory, kName};

 private:
  void RemoveKey() const { RegDeleteTreeW(kRoot, path.c_str()); }
};

class RegistryTest : public WithKey<::testing::Test> {};

using RegistrySave = RegistryTest;
using RegistryLoad = RegistryTest;
using RegistryExists = RegistryTest;
using RegistryDeleteKey = RegistryTest;
using RegistryDeleteValue = RegistryTest;
using RegistryNames = RegistryTest;
using RegistryKeys = RegistryTest;

TEST(RegistryRoots, AreThePredefinedKeys) {
  EXPECT_EQ(Registry::kCurrentUser, HKEY_CURRENT_USER);
  EXPECT_EQ(Registry::kLocalMachine, HKEY_LOCAL_MACHINE);
  EXPECT_EQ(static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(Registry::kCurrentUser)), 0x80000001);
  EXPECT_EQ(static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(Registry::kLocalMachine)), 0x80000002);
}

// --- writes ---------------------------------------------------------------------------------

class RegistryKinds : public WithKey<::testing::TestWithParam<Kind>> {
 protected:
  const Kind& kind = GetParam();
};

INSTANTIATE_TEST_SUITE_P(Types, RegistryKinds, ::testing::ValuesIn(Kinds()),
                         [](const ::testing::TestParamInfo<Kind>& kind) {
                           return kind.param.name;
                         });

TEST_P(RegistryKinds, SaveCreatesPathAndCategory) {
  EXPECT_TRUE(kind.save(kRoot, address));
  EXPECT_NE(Stored(), std::nullopt);
}

TEST_P(RegistryKinds, SaveCreatesOneKeyForEachPartOfANestedCategory) {
  EXPECT_TRUE(kind.save(kRoot, {path, L"Workspace\\Trays\\Dialogs", kName}));
  EXPECT_NE(ReadRaw(path + L"\\Workspace\\Trays\\Dialogs", kName), std::nullopt);
}

TEST_P(RegistryKinds, SaveReplacesAValueOfAnyType) {
  Store({REG_MULTI_SZ, BytesOf(L"one\0two\0\0"sv)});
  EXPECT_TRUE(kind.save(kRoot, address));
  EXPECT_NE(Stored()->type, static_cast<DWORD>(REG_MULTI_SZ));
}

TEST_P(RegistryKinds, SaveBelowARootThatIsNoKeyFails) { EXPECT_FALSE(kind.save(nullptr, address)); }

TEST_P(RegistryKinds, SaveWithoutACategoryWritesToThePath) {
  EXPECT_TRUE(kind.save(kRoot, {path, L"", kName}));
  EXPECT_NE(ReadRaw(path, kName), std::nullopt);
}

TEST_P(RegistryKinds, SaveWithoutAPathWritesBelowTheRoot) {
  EXPECT_TRUE(kind.save(kRoot, {L"", category_path, kName}));
  EXPECT_NE(Stored(), std::nullopt);
}

TEST_P(RegistryKinds, SaveWithoutANameWritesTheDefaultValue) {
  EXPECT_TRUE(kind.save(kRoot, {path, kCategory, L""}));
  const UniqueKey key = OpenRaw(category_path);
  EXPECT_EQ(RegQueryValueExW(key.get(), nullptr, nullptr, nullptr, nullptr, nullptr),
            ERROR_SUCCESS);
}

TEST_P(RegistryKinds, LoadReadsBackWhatSaveWrote) {
  kind.save(kRoot, address);
  EXPECT_FALSE(kind.load_gives_default(kRoot, address));
}

TEST_P(RegistryKinds, LoadWithoutACategoryReadsFromThePath) {
  kind.save(kRoot, {path, L"", kName});
  EXPECT_FALSE(kind.load_gives_default(kRoot, {path, L"", kName}));
}

TEST_P(RegistryKinds, LoadWithoutAPathReadsBelowTheRoot) {
  kind.save(kRoot, address);
  EXPECT_FALSE(kind.load_gives_default(kRoot, {L"", category_path, kName}));
}

TEST_P(RegistryKinds, LoadWithoutANameReadsTheDefaultValue) {
  kind.save(kRoot, {path, kCategory, L""});
  EXPECT_FALSE(kind.load_gives_default(kRoot, {path, kCategory, L""}));
}

TEST_P(RegistryKinds, LoadOfAMissingValueGivesTheDefault) {
  CreateRaw(category_path);
  EXPECT_TRUE(kind.load_gives_default(kRoot, address));
}

TEST_P(RegistryKinds, LoadOfAMissingCategoryGivesTheDefaultAndLeavesAnEmptyCategoryBehind) {
  CreateRaw(path);
  EXPECT_TRUE(kind.load_gives_default(kRoot, address));
  EXPECT_NE(OpenRaw(category_path), nullptr);
  EXPECT_EQ(Stored(), std::nullopt);
}

TEST_P(RegistryKinds, LoadOfAMissingPathGivesTheDefaultAndCreatesNothing) {
  EXPECT_TRUE(kind.load_gives_default(kRoot, address));
  EXPECT_EQ(OpenRaw(path), nullptr);
}

TEST_P(RegistryKinds, LoadBelowARootThatIsNoKeyGivesTheDefault) {
  EXPECT_TRUE(kind.load_gives_default(nullptr, address));
}

TEST_P(RegistryKinds, LoadFindsNamesInAnyCase) {
  kind.save(kRoot, address);
  EXPECT_FALSE(kind.load_gives_default(kRoot, {path, L"wINDOW", L"sIZE"}));
}

TEST_F(RegistrySave, IntsAreDwords) {
  for (const int value : {0, 1, -1, 0x12345678, INT_MIN, INT_MAX}) {
    EXPECT_TRUE(Registry::SaveInt(kRoot, path, kCategory, kName, value));
    EXPECT_EQ(Stored(), DwordValue(static_cast<DWORD>(value)));
    EXPECT_EQ(LoadInt(5), value);
  }
}

TEST_F(RegistrySave, BoolsAreTheDwordsOneAndZero) {
  for (const bool value : {true, false}) {
    EXPECT_TRUE(Registry::SaveBool(kRoot, path, kCategory, kName, value));
    EXPECT_EQ(Stored(), DwordValue(value ? 1 : 0));
    EXPECT_EQ(LoadBool(!value), value);
  }
}

TEST_F(RegistrySave, StringsAreTextsWithTheirTerminatingZero) {
  // An empty one, letters beyond ASCII, a pair and a lone half of surrogates.
  for (const std::wstring value : {L"", L"x", L"a \u00E4\u3042", L"\U0001F600", L"\xD800 b"}) {
    EXPECT_TRUE(SaveText(value));
    EXPECT_EQ(Stored(), TextValue(value));
    EXPECT_EQ(LoadText(L"default"), value);
  }
}

TEST_F(RegistrySave, StringsKeepTheByteCountOfLengthPlusOneUnits) {
  EXPECT_TRUE(SaveText(L"four"));
  EXPECT_EQ(Stored()->bytes.size(), 10U);
}

TEST_F(RegistrySave, StringsWithAZeroInsideAreStoredWholeAndReadUpToIt) {
  EXPECT_TRUE(SaveText(L"one\0two"s));
  EXPECT_EQ(Stored(), (RawValue{REG_SZ, BytesOf(L"one\0two\0"sv)}));
  EXPECT_EQ(LoadText(L"default"), L"one");
}

TEST_F(RegistrySave, LongStringsSurvive) {
  const vemora_ustring text(500'000, L'\u3042');
  EXPECT_TRUE(SaveText(text));
  EXPECT_TRUE(LoadText(L"default") == text);
}

TEST_F(RegistrySave, BinaryValuesAreTheirBytes) {
  for (const std::string& value : {""s, "\0"s, "a\0\0b\0"s, "\xFF\x80odd"s}) {
    EXPECT_TRUE(SaveBinary(value));
    EXPECT_EQ(Stored(), (RawValue{REG_BINARY, value}));
    EXPECT_EQ(LoadBinary("default"), value);
  }
}

TEST_F(RegistrySave, LongBinaryValuesSurvive) {
  std::string value(1 << 20, '\0');
  std::generate(value.begin(), value.end(),
                [next = 0]() mutable { return static_cast<char>(next++ % 251); });
  EXPECT_TRUE(SaveBinary(value));
  EXPECT_TRUE(LoadBinary("default") == value);
}

// --- doubles --------------------------------------------------------------------------------

struct DoubleText {
  double value;
  const wchar_t* text;
};

constexpr DoubleText kDoubles[] = {
    {0.0, L"0.000000"},
    {-0.0, L"-0.000000"},
    {2.5, L"2.500000"},
    {0.1, L"0.100000"},
    {-1234567.891, L"-1234567.891000"},
    {1e-7, L"0.000000"},
    {0.9999996, L"1.000000"},
    {9007199254740993.0, L"9007199254740992.000000"},
    {1e22, L"10000000000000000000000.000000"},
    {DBL_MAX,
     L"179769313486231570814527423731704356798070567525844996598917476803157260780028538760589558"
     L"632766878171540458953514382464234321326889464182768467546703537516986049910576551282076245"
     L"490090389328944075868508455133942304583236903222948165808559332123348274797826204144723168"
     L"738177180919299881250404026184124858368.000000"},
};

TEST_F(RegistrySave, DoublesAreTextsWithSixDecimals) {
  for (const auto& [value, text] : kDoubles) {
    EXPECT_TRUE(SaveDouble(value));
    EXPECT_EQ(Stored(), TextValue(text));
  }
}

TEST_F(RegistrySave, DoublesHaveAPointInEveryLocale) {
  const CommaLocale locale;
  for (const auto& [value, text] : kDoubles) {
    EXPECT_TRUE(SaveDouble(value));
    EXPECT_EQ(Stored(), TextValue(text));
  }
}

TEST_F(RegistrySave, DoublesAreReadBackToSixDecimals) {
  EXPECT_TRUE(SaveDouble(0.12345678));
  EXPECT_EQ(LoadDouble(9.0), 0.123457);
}

TEST_F(RegistrySave, LargeDoublesAreReadBackExactly) {
  for (const double value : {DBL_MAX, -DBL_MAX, 1e300, 9007199254740992.0}) {
    EXPECT_TRUE(SaveDouble(value));
    EXPECT_EQ(LoadDouble(9.0), value);
  }
}

TEST_F(RegistrySave, InfinitiesAreReadBackAsThemselves) {
  for (const double value : {kInfinity, -kInfinity}) {
    EXPECT_TRUE(SaveDouble(value));
    EXPECT_EQ(LoadDouble(9.0), value);
  }
}

TEST_F(RegistrySave, NotANumberIsReadBackAsSuch) {
  for (const double value : {kNan, -kNan}) {
    EXPECT_TRUE(SaveDouble(value));
    EXPECT_TRUE(std::isnan(LoadDouble(9.0)));
  }
}

constexpr double kDefault = -0.75;

constexpr DoubleText kScans[] = {
    // No number at the start.
    {kDefault, L""},
    {kDefault, L"abc"},
    {kDefault, L"   "},
    {kDefault, L"."},
    {kDefault, L"-"},
    {kDefault, L"+"},
    {kDefault, L"+-3"},
    {kDefault, L"-+3"},
    {kDefault, L"- 3"},
    {kDefault, L"e5"},
    {kDefault, L",5"},
    {kDefault, L"\uFF11"},
    {kDefault, L"\u0661"},
    // How older programs write what is no number.
    {kDefault, L"1.#INF00"},
    {kDefault, L"-1.#INF00"},
    {kDefault, L"1.#IND00"},
    {kDefault, L"-1.#IND00"},
    {kDefault, L"1.#QNAN0"},
    {kDefault, L"-1.#QNAN0"},
    {kDefault, L"1.#SNAN0"},
    {kDefault, L"information"},
    {kDefault, L"-infantry"},
    {kDefault, L"nancy"},
    // More than a double can hold.
    {kDefault, L"1e400"},
    {kDefault, L"-1e400"},
    // What follows the number does not count.
    {12.0, L"12#5"},
    {12.0, L"12"},
    {12.0, L"12abc"},
    {12.0, L"12 13"},
    {12.0, L"12\u00E4"},
    {1.0, L"1,5"},
    {1.5, L"1.5.7"},
    {1.0, L"1e"},
    {1.0, L"1e+"},
    // Blanks and a sign before it.
    {12.0, L" \t\r\n\v\f12"},
    {3.0, L"+3"},
    {-3.0, L"-3"},
    {3.0, L"  +3"},
    // Other spellings.
    {0.5, L".5"},
    {5.0, L"5."},
    {1500.0, L"1.5e3"},
    {0.0015, L"1.5E-3"},
    {7.0, L"0007"},
};

void PrintTo(const DoubleText& row, std::ostream* out) {
  *out << ::testing::PrintToString(vemora_ustring(row.text));
}

class RegistryLoadDouble : public WithKey<::testing::TestWithParam<DoubleText>> {};

INSTANTIATE_TEST_SUITE_P(Texts, RegistryLoadDouble, ::testing::ValuesIn(kScans));

TEST_P(RegistryLoadDouble, ScansTheNumberAtTheStart) {
  Store(TextValue(GetParam().text));
  EXPECT_EQ(LoadDouble(kDefault), GetParam().value);
}

TEST_P(RegistryLoadDouble, ScansAlikeInALocaleWithADecimalComma) {
  Store(TextValue(GetParam().text));
  const CommaLocale locale;
  EXPECT_EQ(LoadDouble(kDefault), GetParam().value);
}

TEST_F(RegistryLoad, DoubleTakesTheSameBlanksInEveryLocale) {
  for (const wchar_t blank : {L'\x85', L'\xA0', L'\x2003', L'\x3000'}) {
    Store(TextValue({blank, L'1', L'2'}));
    const double here = LoadDouble(kDefault);
    const CommaLocale locale;
    EXPECT_EQ(LoadDouble(kDefault), here) << "U+" << std::hex << static_cast<int>(blank);
  }
}

TEST_F(RegistryLoad, DoubleIsReadFromATextOfAnyType) {
  Store({REG_BINARY, BytesOf(L"2.5")});
  EXPECT_EQ(LoadDouble(kDefault), 2.5);
}

TEST_F(RegistryLoad, DoubleFromADwordIsTheTextInItsBytes) {
  Store(DwordValue(5));  // U+0005
  EXPECT_EQ(LoadDouble(kDefault), kDefault);
  Store(DwordValue('5'));
  EXPECT_EQ(LoadDouble(kDefault), 5.0);
}

// --- DWORDs ---------------------------------------------------------------------------------

TEST_F(RegistryLoad, IntOfAFourByteBinaryValueIsItsBytes) {
  Store({REG_BINARY, "\x78\x56\x34\x12"});
  EXPECT_EQ(LoadInt(5), 0x12345678);
}

TEST_F(RegistryLoad, IntOfATextOfMoreThanFourBytesIsTheDefault) {
  Store(TextValue(L"12"));
  EXPECT_EQ(LoadInt(5), 5);
}

TEST_F(RegistryLoad, IntOfATextOfFourBytesIsItsBytes) {
  Store(TextValue(L"1"));
  EXPECT_EQ(LoadInt(5), '1');
}

TEST_F(RegistryLoad, IntTakesMissingBytesAsZero) {
  Store({REG_BINARY, "\xFF\xFE\xFD"});
  EXPECT_EQ(LoadInt(5), 0xFDFEFF);
  Store({REG_DWORD, "\xFF"});
  EXPECT_EQ(LoadInt(5), 0xFF);
  Store({REG_SZ, ""});
  EXPECT_EQ(LoadInt(5), 0);
}

TEST_F(RegistryLoad, IntOfAnEightByteNumberIsTheDefault) {
  Store({REG_QWORD, "\x01\0\0\0\0\0\0\0"s});
  EXPECT_EQ(LoadInt(5), 5);
}

TEST_F(RegistryLoad, BoolIsTrueForAnyDwordButZero) {
  for (const DWORD value : {1UL, 2UL, 256UL, 0x80000000UL, 0xFFFFFFFFUL}) {
    Store(DwordValue(value));
    EXPECT_TRUE(LoadBool(false)) << value;
  }
  Store(DwordValue(0));
  EXPECT_FALSE(LoadBool(true));
}

TEST_F(RegistryLoad, BoolOfALongerValueIsTheDefault) {
  Store({REG_BINARY, "\x01\0\0\0\0"s});
  EXPECT_FALSE(LoadBool(false));
  EXPECT_TRUE(LoadBool(true));
}

// --- texts and bytes ------------------------------------------------------------------------

TEST_F(RegistryLoad, StringWithoutATerminatingZeroEndsWithTheData) {
  Store({REG_SZ, BytesOf(L"text")});
  EXPECT_EQ(LoadText(L"default"), L"text");
}

TEST_F(RegistryLoad, StringWithTwoTerminatingZerosEndsAtTheFirst) {
  Store({REG_SZ, BytesOf(L"text\0\0"sv)});
  EXPECT_EQ(LoadText(L"default"), L"text");
}

TEST_F(RegistryLoad, StringOfAnOddNumberOfBytesLosesTheLast) {
  Store({REG_SZ, BytesOf(L"text") + "x"});
  EXPECT_EQ(LoadText(L"default"), L"text");
  Store({REG_SZ, "x"});
  EXPECT_EQ(LoadText(L"default"), L"");
}

TEST_F(RegistryLoad, StringOfAnEmptyValueIsEmptyAndNotTheDefault) {
  Store({REG_SZ, ""});
  EXPECT_EQ(LoadText(L"default"), L"");
}

TEST_F(RegistryLoad, StringDoesNotExpandVariables) {
  Store({REG_EXPAND_SZ, BytesOf(L"%PATH%\0"sv)});
  EXPECT_EQ(LoadText(L"default"), L"%PATH%");
}

TEST_F(RegistryLoad, StringOfAListIsItsFirstText) {
  Store({REG_MULTI_SZ, BytesOf(L"one\0two\0\0"sv)});
  EXPECT_EQ(LoadText(L"default"), L"one");
}

TEST_F(RegistryLoad, BinaryOfAnEmptyValueIsEmptyAndNotTheDefault) {
  Store({REG_BINARY, ""});
  EXPECT_EQ(LoadBinary("default"), "");
}

TEST_F(RegistryLoad, BinaryOfATextIsItsBytesWithTheZero) {
  Store(TextValue(L"ab"));
  EXPECT_EQ(LoadBinary("default"), "a\0b\0\0\0"s);
}

// --- whatever another program may have stored ----------------------------------------------

class RegistryForeignValue : public WithKey<::testing::TestWithParam<DWORD>> {
 protected:
  void ExpectDerivedReads(const std::string& bytes) {
    SCOPED_TRACE(::testing::PrintToString(bytes.substr(0, 16)) + ", " +
                 std::to_string(bytes.size()) + " bytes");
    ASSERT_NO_FATAL_FAILURE(Store({GetParam(), bytes}));
    DWORD number = 0;
    bytes.copy(reinterpret_cast<char*>(&number), sizeof(number));
    const bool is_short = bytes.size() <= sizeof(number);
    EXPECT_EQ(LoadInt(-5), is_short ? static_cast<int>(number) : -5);
    EXPECT_EQ(LoadBool(true), is_short ? number != 0 : true);
    EXPECT_EQ(LoadBool(false), is_short && number != 0);
    EXPECT_TRUE(LoadBinary("default") == bytes);
    EXPECT_TRUE(LoadText(L"default") == TextIn(bytes));
  }

  static std::wstring TextIn(const std::string& bytes) {
    std::wstring text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
      text += static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) |
                                   static_cast<unsigned char>(bytes[i + 1]) << 8);
    }
    return text.substr(0, text.find(L'\0'));
  }

  static std::string Repeat(std::string_view pattern, std::size_t size) {
    std::string bytes;
    while (bytes.size() < size) {
      bytes += pattern;
    }
    bytes.resize(size);
    return bytes;
  }

  static constexpr std::size_t kSizes[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 65535, 1 << 20};
};

// From REG_NONE to REG_QWORD.
INSTANTIATE_TEST_SUITE_P(Types, RegistryForeignValue, ::testing::Range(DWORD{0}, DWORD{12}));

TEST_P(RegistryForeignValue, OfAnySizeIsReadAsTheBytesItHas) {
  for (const std::size_t size : kSizes) {
    for (const std::string_view pattern : {"\xA5"sv, "\0"sv, "7\0"sv, "a\0\0"sv}) {
      ExpectDerivedReads(Repeat(pattern, size));
    }
  }
}

TEST_P(RegistryForeignValue, WithoutANumberReadsAsTheDefaultDouble) {
  for (const std::size_t size : kSizes) {
    for (const std::string_view pattern : {"\xA5"sv, "\0"sv, "a\0"sv}) {
      Store({GetParam(), Repeat(pattern, size)});
      EXPECT_EQ(LoadDouble(kDefault), kDefault) << size;
    }
  }
}

TEST_P(RegistryForeignValue, OfDigitsReadsAsTheDoubleOfThoseItHas) {
  const double expected[] = {kDefault, kDefault, 7, 7, 77, 77, 777, 777, 7777, 7777};
  for (std::size_t size = 0; size < std::size(expected); ++size) {
    Store({GetParam(), Repeat("7\0"sv, size)});
    EXPECT_EQ(LoadDouble(kDefault), expected[size]) << size;
  }
  for (const std::size_t size : {std::size_t{65535}, std::size_t{1} << 20}) {
    Store({GetParam(), Repeat("7\0"sv, size)});
    EXPECT_EQ(LoadDouble(kDefault), kDefault) << "more than a double can hold";
  }
}

TEST_F(RegistryLoad, OfAValueThatChangesMeanwhileGivesOneOfItsStates) {
  const std::string shorter = BytesOf(L"ab");
  const std::string longer(100'000, 'x');
  const vemora_ustring longer_text(longer.size() / 2, L'\x7878');
  Store({REG_BINARY, shorter});
  const UniqueKey key = OpenRaw(category_path);
  std::atomic<bool> done = false;
  std::thread other_program([&] {
    for (bool grow = true; !done; grow = !grow) {
      const std::string& bytes = grow ? longer : shorter;
      RegSetValueExW(key.get(), kName, 0, REG_BINARY, reinterpret_cast<const BYTE*>(bytes.data()),
                     static_cast<DWORD>(bytes.size()));
    }
  });
  int strange = 0;
  for (int i = 0; i < 3'000; ++i) {
    const std::string bytes = LoadBinary("");
    strange += bytes != shorter && bytes != longer;
    const vemora_ustring text = LoadText(L"");
    strange += text != L"ab" && text != longer_text;
    const int number = LoadInt(-5);
    strange += number != -5 && number != ('b' << 16 | 'a');
  }
  done = true;
  other_program.join();
  EXPECT_EQ(strange, 0);
}

// --- PathExists, KeyExists, ValueExists ------------------------------------------------------

TEST_F(RegistryExists, PathIsThereWhenItsKeyIs) {
  EXPECT_FALSE(Registry::PathExists(kRoot, path));
  CreateRaw(path);
  EXPECT_TRUE(Registry::PathExists(kRoot, path));
}

TEST_F(RegistryExists, EmptyPathIsTheRoot) {
  EXPECT_TRUE(Registry::PathExists(kRoot, L""));
  EXPECT_FALSE(Registry::PathExists(nullptr, L""));
}

TEST_F(RegistryExists, CategoryIsThereWhenItsKeyIs) {
  CreateRaw(path);
  EXPECT_FALSE(Registry::KeyExists(kRoot, path, kCategory));
  CreateRaw(category_path);
  EXPECT_TRUE(Registry::KeyExists(kRoot, path, kCategory));
}

TEST_F(RegistryExists, CategoryOfAnEmptyPathLiesBelowTheRoot) {
  EXPECT_FALSE(Registry::KeyExists(kRoot, L"", category_path));
  CreateRaw(category_path);
  EXPECT_TRUE(Registry::KeyExists(kRoot, L"", category_path));
  EXPECT_FALSE(Registry::KeyExists(OpenRaw(path).get(), L"", category_path));
}

TEST_F(RegistryExists, EmptyCategoryIsThePath) {
  EXPECT_FALSE(Registry::KeyExists(kRoot, path, L""));
  CreateRaw(path);
  EXPECT_TRUE(Registry::KeyExists(kRoot, path, L""));
}

TEST_F(RegistryExists, EmptyPathAndCategoryAreTheRoot) {
  EXPECT_TRUE(Registry::KeyExists(kRoot, L"", L""));
  EXPECT_FALSE(Registry::KeyExists(nullptr, L"", L""));
}

TEST_F(RegistryExists, ValueIsThereWhateverItsType) {
  for (DWORD type = REG_NONE; type <= REG_QWORD; ++type) {
    Store({type, ""});
    EXPECT_TRUE(Registry::ValueExists(kRoot, path, kCategory, kName)) << type;
  }
}

TEST_F(RegistryExists, ValueIsNotThereWithoutItsNameCategoryOrPath) {
  EXPECT_FALSE(Registry::ValueExists(kRoot, path, kCategory, kName));
  CreateRaw(path);
  EXPECT_FALSE(Registry::ValueExists(kRoot, path, kCategory, kName));
  CreateRaw(category_path);
  EXPECT_FALSE(Registry::ValueExists(kRoot, path, kCategory, kName));
}

TEST_F(RegistryExists, ValueWithoutACategoryIsOneOfThePath) {
  Store(DwordValue(1));
  EXPECT_FALSE(Registry::ValueExists(kRoot, path, L"", kName));
  WriteRaw(path, kName, DwordValue(1));
  EXPECT_TRUE(Registry::ValueExists(kRoot, path, L"", kName));
}

TEST_F(RegistryExists, ValueWithoutAPathIsOneBelowTheRoot) {
  Store(DwordValue(1));
  EXPECT_TRUE(Registry::ValueExists(kRoot, L"", category_path, kName));
}

TEST_F(RegistryExists, ValueWithoutANameIsTheDefaultValue) {
  CreateRaw(category_path);
  EXPECT_FALSE(Registry::ValueExists(kRoot, path, kCategory, L""));
  WriteRaw(category_path, L"", TextValue(L"x"));
  EXPECT_TRUE(Registry::ValueExists(kRoot, path, kCategory, L""));
}

TEST_F(RegistryExists, AsksWithoutCreatingAnything) {
  CreateRaw(path);
  Registry::PathExists(kRoot, path + L"2");
  Registry::KeyExists(kRoot, path, kCategory);
  Registry::ValueExists(kRoot, path, kCategory, kName);
  EXPECT_EQ(OpenRaw(path + L"2"), nullptr);
  EXPECT_THAT(SubkeysOf(path), ::testing::IsEmpty());
}

// --- DeleteKey ------------------------------------------------------------------------------

TEST_F(RegistryDeleteKey, RemovesACategoryWithItsValues) {
  Store(DwordValue(1));
  EXPECT_TRUE(Registry::DeleteKey(kRoot, path, kCategory));
  EXPECT_EQ(OpenRaw(category_path), nullptr);
}

TEST_F(RegistryDeleteKey, LeavesOtherCategoriesAndThePath) {
  Store(DwordValue(1));
  WriteRaw(path, kName, DwordValue(2));
  WriteRaw(path + L"\\View", kName, DwordValue(3));
  Registry::DeleteKey(kRoot, path, kCategory);
  EXPECT_EQ(ReadRaw(path, kName), DwordValue(2));
  EXPECT_EQ(ReadRaw(path + L"\\View", kName), DwordValue(3));
}

TEST_F(RegistryDeleteKey, RemovesTheLastPartOfANestedCategory) {
  CreateRaw(category_path + L"\\Inner");
  EXPECT_TRUE(Registry::DeleteKey(kRoot, path, L"Window\\Inner"));
  EXPECT_THAT(SubkeysOf(category_path), ::testing::IsEmpty());
  EXPECT_NE(OpenRaw(category_path), nullptr);
}

TEST_F(RegistryDeleteKey, IsTrueForACategoryWithSubkeysAndLeavesIt) {
  Store(DwordValue(1));
  CreateRaw(category_path + L"\\Inner");
  EXPECT_TRUE(Registry::DeleteKey(kRoot, path, kCategory));
  EXPECT_EQ(Stored(), DwordValue(1));
  EXPECT_NE(OpenRaw(category_path + L"\\Inner"), nullptr);
}

TEST_F(RegistryDeleteKey, IsFalseForAMissingCategoryOrPath) {
  EXPECT_FALSE(Registry::DeleteKey(kRoot, path, kCategory));
  CreateRaw(path);
  EXPECT_FALSE(Registry::DeleteKey(kRoot, path, kCategory));
  EXPECT_NE(OpenRaw(path), nullptr);
}

TEST_F(RegistryDeleteKey, WithoutAPathRemovesACategoryBelowTheRoot) {
  CreateRaw(category_path);
  EXPECT_TRUE(Registry::DeleteKey(OpenRaw(path).get(), L"", kCategory));
  EXPECT_EQ(OpenRaw(category_path), nullptr);
}

TEST_F(RegistryDeleteKey, WithoutACategoryDeletesNothing) {
  WriteRaw(path, kName, DwordValue(1));
  for (const wchar_t* category : {L"", L"\\", L"\\\\", L"\\\\\\"}) {
    EXPECT_FALSE(Registry::DeleteKey(kRoot, path, category));
    EXPECT_EQ(ReadRaw(path, kName), DwordValue(1));
  }
}

TEST_F(RegistryDeleteKey, WithoutPathAndCategoryDeletesNothing) {
  WriteRaw(path, kName, DwordValue(1));
  for (const wchar_t* category : {L"", L"\\", L"\\\\"}) {
    EXPECT_FALSE(Registry::DeleteKey(OpenRaw(path).get(), L"", category));
    EXPECT_EQ(ReadRaw(path, kName), DwordValue(1));
  }
}

TEST_F(RegistryDeleteKey, BelowARootThatIsNoKeyIsFalse) {
  EXPECT_FALSE(Registry::DeleteKey(nullptr, path, kCategory));
}

// --- DeleteValue ----------------------------------------------------------------------------

TEST_F(RegistryDeleteValue, RemovesTheValueAndLeavesTheOthers) {
  Store(DwordValue(1));
  WriteRaw(category_path, L"Place", DwordValue(2));
  EXPECT_TRUE(Registry::DeleteValue(kRoot, path, kCategory, kName));
  EXPECT_EQ(Stored(), std::nullopt);
  EXPECT_EQ(ReadRaw(category_path, L"Place"), DwordValue(2));
}

TEST_F(RegistryDeleteValue, IsFalseForAMissingPathCategoryOrValue) {
  EXPECT_FALSE(Registry::DeleteValue(kRoot, path, kCategory, kName));
  EXPECT_EQ(OpenRaw(path), nullptr);
  CreateRaw(path);
  EXPECT_FALSE(Registry::DeleteValue(kRoot, path, kCategory, kName));
  EXPECT_EQ(OpenRaw(category_path), nullptr);
  CreateRaw(category_path);
  EXPECT_FALSE(Registry::DeleteValue(kRoot, path, kCategory, kName));
}

TEST_F(RegistryDeleteValue, WithoutACategoryRemovesAValueOfThePath) {
  Store(DwordValue(1));
  WriteRaw(path, kName, DwordValue(2));
  EXPECT_TRUE(Registry::DeleteValue(kRoot, path, L"", kName));
  EXPECT_EQ(ReadRaw(path, kName), std::nullopt);
  EXPECT_EQ(Stored(), DwordValue(1));
}

TEST_F(RegistryDeleteValue, WithoutAPathRemovesAValueBelowTheRoot) {
  Store(DwordValue(1));
  EXPECT_TRUE(Registry::DeleteValue(OpenRaw(path).get(), L"", kCategory, kName));
  EXPECT_EQ(Stored(), std::nullopt);
}

TEST_F(RegistryDeleteValue, WithoutANameRemovesTheDefaultValueOnly) {
  Store(DwordValue(1));
  WriteRaw(category_path, L"", TextValue(L"x"));
  EXPECT_TRUE(Registry::DeleteValue(kRoot, path, kCategory, L""));
  EXPECT_EQ(ReadRaw(category_path, L""), std::nullopt);
  EXPECT_EQ(Stored(), DwordValue(1));
  EXPECT_FALSE(Registry::DeleteValue(kRoot, path, kCategory, L""));
}

// --- names that the registry does not allow -------------------------------------------------

/// Calls everything with names that lead nowhere; the value that `address` names stays.
class RegistryBadName : public WithKey<::testing::TestWithParam<std::wstring>> {
 protected:
  void SetUp() override {
    WithKey::SetUp();
    WriteRaw(path, kName, DwordValue(7));
    Store(DwordValue(7));
  }

  void ExpectNothingHappens(const Address& bad) {
    ExpectDefaults(kRoot, bad);
    ExpectRefusals(kRoot, bad);
    EXPECT_FALSE(Registry::ValueExists(kRoot, bad.path, bad.category, bad.name));
    EXPECT_FALSE(Registry::DeleteValue(kRoot, bad.path, bad.category, bad.name));
    ExpectAllIsThere();
  }

  void ExpectNoSuchCategory(const vemora_ustring& bad_path, const vemora_ustring& bad_category) {
    EXPECT_FALSE(Registry::KeyExists(kRoot, bad_path, bad_category));
    EXPECT_FALSE(Registry::DeleteKey(kRoot, bad_path, bad_category));
    ExpectAllIsThere();
  }

  void ExpectAllIsThere() {
    EXPECT_EQ(Stored(), DwordValue(7));
    EXPECT_EQ(ReadRaw(path, kName), DwordValue(7));
    EXPECT_THAT(SubkeysOf(path), ::testing::ElementsAre(vemora_ustring(kCategory)));
    EXPECT_THAT(SubkeysOf(category_path), ::testing::IsEmpty());
  }
};

std::wstring DeepName(std::size_t length) {
  std::wstring name;
  while (name.size() < length) {
    name += L'\\' + std::wstring(200, L'd');
  }
  return name;
}

// Appended to a good name. The lengths are past the limits of the registry, and such that a
// length counted in sixteen bits, of units or of bytes, would come round to the good name.
INSTANTIATE_TEST_SUITE_P(Zeros, RegistryBadName, ::testing::Values(L"\0"s, L"\0tail"s, L"\0\\a"s));
INSTANTIATE_TEST_SUITE_P(Lengths, RegistryBadName,
                         ::testing::Values(std::wstring(16'384, L'x'), std::wstring(32'768, L'x'),
                                           std::wstring(65'536, L'x')));

TEST_P(RegistryBadName, OfAValueFails) {
  ExpectNothingHappens({path, kCategory, kName + GetParam()});
}

TEST_P(RegistryBadName, OfACategoryFails) {
  ExpectNothingHappens({path, kCategory + GetParam(), kName});
  ExpectNoSuchCategory(path, kCategory + GetParam());
}

TEST_P(RegistryBadName, OfAPathFails) {
  ExpectNothingHappens({path + GetParam(), kCategory, kName});
  ExpectNoSuchCategory(path + GetParam(), kCategory);
  EXPECT_FALSE(Registry::PathExists(kRoot, path + GetParam()));
}

class RegistryDeepName : public RegistryBadName {};

// Each part is short enough, only the whole is too long.
INSTANTIATE_TEST_SUITE_P(Lengths, RegistryDeepName,
                         ::testing::Values(DeepName(32'768), DeepName(65'536)),
                         [](const ::testing::TestParamInfo<std::wstring>& name) {
                           return std::to_string(name.param.size());
                         });

TEST_P(RegistryDeepName, OfACategoryFails) {
  ExpectNothingHappens({path, kCategory + GetParam(), kName});
  ExpectNoSuchCategory(path, kCategory + GetParam());
}

TEST_P(RegistryDeepName, OfAPathFails) {
  ExpectNothingHappens({path + GetParam(), kCategory, kName});
  EXPECT_FALSE(Registry::PathExists(kRoot, path + GetParam()));
}

TEST_F(RegistryNames, OfValuesMayHaveAsManyUnitsAsTheRegistryAllows) {
  const Address longest{path, kCategory, std::wstring(16'383, L'x')};
  for (const Kind& kind : Kinds()) {
    EXPECT_TRUE(kind.save(kRoot, longest)) << kind.name;
    EXPECT_FALSE(kind.load_gives_default(kRoot, longest)) << kind.name;
  }
  EXPECT_TRUE(Registry::DeleteValue(kRoot, longest.path, longest.category, longest.name));
}

TEST_F(RegistryNames, OfCategoriesMayHaveAsManyUnitsAsTheRegistryAllows) {
  const Address longest{path, std::wstring(255, L'x'), kName};
  for (const Kind& kind : Kinds()) {
    EXPECT_TRUE(kind.save(kRoot, longest)) << kind.name;
    EXPECT_FALSE(kind.load_gives_default(kRoot, longest)) << kind.name;
  }
  EXPECT_TRUE(Registry::DeleteKey(kRoot, longest.path, longest.category));
}

TEST_F(RegistryNames, MayHaveAnyOtherUnits) {
  const Address odd{path, L"a/b \"\x1\u00E4\U0001F600", L"c\\d/ \"\x1\n\u3042"};
  EXPECT_TRUE(Registry::SaveInt(kRoot, odd.path, odd.category, odd.name, 3));
  EXPECT_EQ(ReadRaw(path + L'\\' + odd.category, odd.name), DwordValue(3));
  EXPECT_EQ(Registry::LoadInt(kRoot, odd.path, odd.category, odd.name, 5), 3);
}

// --- keys without access rights, and keys that are deleted meanwhile -------------------------

namespace faults = testing::faults;

constexpr int kFirstCall = 0;

using OpenKeyHook = testing::ImportHook<testing::imports::kOpenKey, decltype(RegOpenKeyExW)>;
using CreateKeyHook = testing::ImportHook<testing::imports::kCreateKey, decltype(RegCreateKeyExW)>;

class RegistryRefused : public RegistryTest {
 protected:
  /// Refuses each call that the operation makes in turn; the operation tells whether it worked.
  static void ExpectFailures(
      const testing::Fault& fault, const std::function<bool()>& operation,
      const std::function<void()>& prepare = [] {}) {
    const std::size_t handles = testing::CountHandles();
    bool worked = false;
    int call = 0;
    prepare();
    while (testing::MeetsFault(fault, GetModuleHandleW(nullptr), call,
                               [&] { worked = operation(); })) {
      EXPECT_FALSE(worked) << fault.name << ", call " << call;
      EXPECT_EQ(testing::CountHandles(), handles) << fault.name << ", call " << call;
      ++call;
      prepare();
    }
    EXPECT_GT(call, 0) << fault.name;
    EXPECT_TRUE(worked) << fault.name;
  }

  /// A fault that is none of its own: the key is deleted just before the call.
  template <const char* kFunction, typename Function>
  testing::Fault DeletedBefore() const {
    return testing::MakeFault<kFunction, Function>(
        kFunction, [key_path = path](auto original, auto... arguments) {
          RegDeleteTreeW(kRoot, key_path.c_str());
          return original(arguments...);
        });
  }
};

TEST_F(RegistryRefused, LoadsGiveTheDefaultWhenTheValueCannotBeRead) {
  const testing::Fault fault = faults::ValueCannotBeRead();
  Store(DwordValue(1));
  ExpectFailures(fault, [this] { return LoadInt(-5) != -5; });
  ExpectFailures(fault, [this] { return LoadBool(false); });
  Store(TextValue(L"2.5"));
  ExpectFailures(fault, [this] { return LoadDouble(kDefault) != kDefault; });
  ExpectFailures(fault, [this] { return LoadText(L"default") != L"default"; });
  ExpectFailures(fault, [this] { return LoadBinary("default") != "default"; });
}

TEST_F(RegistryRefused, LoadsOpenTheCategoryBelowThePathWhenTheyCannotOpenItFromTheRoot) {
  Store(DwordValue(1));
  bool met = false;
  const auto refused =
      faults::KeyCannotBeOpened().arrange(GetModuleHandleW(nullptr), kFirstCall, met);
  EXPECT_EQ(LoadInt(-5), 1);
  EXPECT_TRUE(met);
}

TEST_F(RegistryRefused, LoadsGiveTheDefaultWhenThePathCannotBeOpenedEither) {
  Store(DwordValue(1));
  const std::size_t handles = testing::CountHandles();
  const OpenKeyHook refused(GetModuleHandleW(nullptr),
                            [](auto, auto...) { return LSTATUS{ERROR_ACCESS_DENIED}; });
  ExpectDefaults(kRoot, address);
  EXPECT_EQ(testing::CountHandles(), handles);
}

TEST_F(RegistryRefused, LoadsGiveTheDefaultWhenTheCategoryCannotBeMade) {
  CreateRaw(path);
  const std::size_t handles = testing::CountHandles();
  for (const Kind& kind : Kinds()) {
    bool met = false;
    const auto refused =
        faults::KeyCannotBeCreated().arrange(GetModuleHandleW(nullptr), kFirstCall, met);
    EXPECT_TRUE(kind.load_gives_default(kRoot, address)) << kind.name;
    EXPECT_TRUE(met) << kind.name;
    EXPECT_EQ(testing::CountHandles(), handles) << kind.name;
    RegDeleteTreeW(kRoot, category_path.c_str());  // the second load of a bool makes it
  }
}

TEST_F(RegistryRefused, SavesFail) {
  for (const Kind& kind : Kinds()) {
    for (const testing::Fault& fault : {faults::KeyCannotBeCreated(), faults::ValueCannotBeSet()}) {
      ExpectFailures(fault, [this, &kind] { return kind.save(kRoot, address); });
    }
  }
}

TEST_F(RegistryRefused, NothingExists) {
  Store(DwordValue(1));
  const testing::Fault no_key = faults::KeyCannotBeOpened();
  ExpectFailures(no_key, [this] { return Registry::PathExists(kRoot, path); });
  ExpectFailures(no_key, [this] { return Registry::KeyExists(kRoot, path, kCategory); });
  for (const testing::Fault& fault : {no_key, faults::ValueCannotBeRead()}) {
    ExpectFailures(fault, [this] { return Registry::ValueExists(kRoot, path, kCategory, kName); });
  }
}

TEST_F(RegistryRefused, NothingIsDeleted) {
  const auto is_stored = [this] { EXPECT_EQ(Stored(), DwordValue(1)); };
  Store(DwordValue(1));
  ExpectFailures(
      faults::KeyCannotBeOpened(),
      [this] { return Registry::DeleteValue(kRoot, path, kCategory, kName); }, is_stored);
  EXPECT_EQ(Stored(), std::nullopt);
  Store(DwordValue(1));
  ExpectFailures(
      faults::KeyCannotBeOpened(), [this] { return Registry::DeleteKey(kRoot, path, kCategory); },
      is_stored);
  EXPECT_EQ(OpenRaw(category_path), nullptr);
}

TEST_F(RegistryRefused, LoadsGiveTheDefaultWhenTheKeyIsDeletedBeforeTheValueIsRead) {
  const testing::Fault deleted =
      DeletedBefore<testing::imports::kQueryValue, decltype(RegQueryValueExW)>();
  const auto store = [this] { Store(DwordValue(1)); };
  ExpectFailures(
      deleted, [this] { return LoadInt(-5) != -5; }, store);
  ExpectFailures(
      deleted, [this] { return LoadBinary("default") != "default"; }, store);
}

TEST_F(RegistryRefused, SavesFailWhenTheKeyIsDeletedBeforeTheValueIsWritten) {
  for (const Kind& kind : Kinds()) {
    ExpectFailures(DeletedBefore<testing::imports::kSetValue, decltype(RegSetValueExW)>(),
                   [this, &kind] { return kind.save(kRoot, address); });
  }
}

TEST_F(RegistryRefused, SavesMakeAKeyAgainThatWasDeletedSinceTheLastCall) {
  for (const Kind& kind : Kinds()) {
    EXPECT_TRUE(kind.save(kRoot, address)) << kind.name;
    RegDeleteTreeW(kRoot, path.c_str());
    EXPECT_TRUE(kind.load_gives_default(kRoot, address)) << kind.name;
  }
}

// --- how loads open a category --------------------------------------------------------------

TEST_F(RegistryLoad, OpensACategoryThatExistsInOneCall) {
  Store(DwordValue(1));
  std::vector<vemora_ustring> opened;
  int created = 0;
  const OpenKeyHook open(GetModuleHandleW(nullptr),
                         [&opened](auto original, HKEY root, const wchar_t* key, auto... others) {
                           opened.emplace_back(key);
                           return original(root, key, others...);
                         });
  const CreateKeyHook create(GetModuleHandleW(nullptr), [&created](auto original, auto... all) {
    ++created;
    return original(all...);
  });
  EXPECT_EQ(LoadInt(-5), 1);
  EXPECT_EQ(opened, std::vector<vemora_ustring>{category_path});
  EXPECT_EQ(created, 0);
}

/// What a load finds, and all keys that there are afterwards.
struct LoadOutcome {
  int value;
  std::vector<vemora_ustring> keys;

  bool operator==(const LoadOutcome& other) const {
    return value == other.value && keys == other.keys;
  }
};

void PrintTo(const LoadOutcome& outcome, std::ostream* out) {
  *out << outcome.value << " and the keys " << ::testing::PrintToString(outcome.keys);
}

std::vector<vemora_ustring> KeysBelow(const vemora_ustring& key_path) {
  std::vector<vemora_ustring> keys;
  for (const vemora_ustring& name : SubkeysOf(key_path)) {
    const vemora_ustring subkey = key_path + L'\\' + name;
    const std::vector<vemora_ustring> below = KeysBelow(subkey);
    keys.push_back(subkey);
    keys.insert(keys.end(), below.begin(), below.end());
  }
  return keys;
}

/// The path is opened, then the category below it is opened or made.
int LoadInTwoSteps(const Address& at, int default_value) {
  HKEY path_key = nullptr;
  if (RegOpenKeyExW(kRoot, at.path.c_str(), 0, MAXIMUM_ALLOWED, &path_key) != ERROR_SUCCESS) {
    return default_value;
  }
  const UniqueKey path_closer(path_key);
  HKEY key = nullptr;
  if (RegCreateKeyExW(path_key, at.category.c_str(), 0, nullptr, 0, KEY_READ, nullptr, &key,
                      nullptr) != ERROR_SUCCESS) {
    return default_value;
  }
  const UniqueKey closer(key);
  DWORD value = 0;
  DWORD size = sizeof(value);
  return RegQueryValueExW(key, at.name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(&value),
                          &size) == ERROR_SUCCESS
             ? static_cast<int>(value)
             : default_value;
}

/// An address below the test's own key, whose separators may stand where none belong.
class RegistryOddAddress
    : public WithKey<::testing::TestWithParam<std::tuple<std::wstring, std::wstring>>> {
 protected:
  template <typename Load>
  LoadOutcome OutcomeOf(Load load) {
    RegDeleteTreeW(kRoot, path.c_str());
    const std::wstring places[] = {L"", L"\\Window", L"\\Window\\Grid", L"\\Grid"};
    for (DWORD number = 0; number < std::size(places); ++number) {
      WriteRaw(path + places[number], kName, DwordValue(number + 1));
    }
    const auto& [behind_path, category] = GetParam();
    const int value = load(Address{path + behind_path, category, kName});
    return {value, KeysBelow(path)};
  }
};

INSTANTIATE_TEST_SUITE_P(
    Texts, RegistryOddAddress,
    ::testing::Combine(::testing::Values(L"", L"\\", L"\\\\", L"\\Window", L"\\Missing"),
                       ::testing::Values(L"", L"Window", L"window", L"Missing", L"\\", L"\\\\",
                                         L"\\Window", L"Window\\", L"\\Window\\", L"\\\\Window",
                                         L"Window\\\\", L"Window\\Grid", L"Window\\\\Grid",
                                         L"Window\\\\\\Grid", L"Window\\Grid\\", L"Missing\\Grid",
                                         L"Missing\\\\Grid", L"Missing\\")));

TEST_P(RegistryOddAddress, GivesAndLeavesWhatTwoStepsDo) {
  const LoadOutcome expected = OutcomeOf([](const Address& at) { return LoadInTwoSteps(at, -5); });
  const LoadOutcome outcome = OutcomeOf([](const Address& at) {
    return Registry::LoadInt(kRoot, at.path, at.category, at.name, -5);
  });
  EXPECT_EQ(outcome, expected);
}

// --- keys and handles -----------------------------------------------------------------------

TEST_F(RegistryKeys, SynchronizeIsHarmless) {
  Store(DwordValue(1));
  const UniqueKey key = OpenRaw(category_path);
  Registry::Synchronize(key.get());
  Registry::Synchronize(Registry::kCurrentUser);
  Registry::Synchronize(Registry::kLocalMachine);
  Registry::Synchronize(nullptr);
  EXPECT_EQ(RegQueryValueExW(key.get(), kName, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(Stored(), DwordValue(1));
}

TEST_F(RegistryKeys, OfTheCallerStayOpen) {
  WriteRaw(path, kName, DwordValue(1));
  const UniqueKey key = OpenRaw(path);
  const auto is_open = [&key] {
    return RegQueryValueExW(key.get(), kName, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
  };
  Registry::PathExists(key.get(), L"");
  EXPECT_TRUE(is_open()) << "PathExists";
  Registry::KeyExists(key.get(), L"", L"");
  EXPECT_TRUE(is_open()) << "KeyExists";
  Registry::ValueExists(key.get(), L"", L"", kName);
  EXPECT_TRUE(is_open()) << "ValueExists";
  Registry::DeleteValue(key.get(), L"", L"", L"Other");
  EXPECT_TRUE(is_open()) << "DeleteValue";
  Registry::SaveInt(key.get(), L"", kCategory, kName, 1);
  EXPECT_TRUE(is_open()) << "SaveInt";
  Registry::LoadInt(key.get(), L"", kCategory, kName, 1);
  EXPECT_TRUE(is_open()) << "LoadInt";
  Registry::DeleteKey(key.get(), L"", kCategory);
  EXPECT_TRUE(is_open()) << "DeleteKey";
}

TEST_F(RegistryKeys, LeftOpenWouldBeCounted) {
  CreateRaw(path);
  const std::size_t before = testing::CountHandles();
  const UniqueKey key = OpenRaw(path);
  EXPECT_EQ(testing::CountHandles(), before + 1);
}

TEST_F(RegistryKeys, AreClosedByManyLoads) {
  Store(TextValue(L"2.5"));
  ExpectDefaults(kRoot, {path, kCategory, L"Missing"});  // whatever is opened once is open now
  const std::size_t before = testing::CountHandles();
  const int rounds = testing::WholeOrSample(20'000, 400);
  for (int i = 0; i < rounds; ++i) {
    LoadInt(1);
    LoadBool(true);
    LoadDouble(1.0);
    LoadText(L"");
    LoadBinary("");
  }
  EXPECT_EQ(testing::CountHandles(), before);
}

TEST_F(RegistryKeys, AreClosedByAllThatFails) {
  CreateRaw(path);
  const Address missing{path, kCategory, L"Missing"};
  const auto fail = [&] {
    ExpectDefaults(kRoot, missing);
    ExpectDefaults(kRoot, {path + L"2", kCategory, kName});
    ExpectRefusals(kRoot, {path, std::wstring(300, L'x'), kName});
    EXPECT_FALSE(Registry::ValueExists(kRoot, missing.path, missing.category, missing.name));
    EXPECT_FALSE(Registry::DeleteValue(kRoot, missing.path, missing.category, missing.name));
    EXPECT_FALSE(Registry::DeleteKey(kRoot, path, L"Missing"));
  };
  fail();
  const std::size_t before = testing::CountHandles();
  for (int i = 0; i < 100; ++i) {
    fail();
  }
  EXPECT_EQ(testing::CountHandles(), before);
}

TEST_F(RegistryKeys, AreClosedByAllThatSucceeds) {
  const auto succeed = [&] {
    for (const Kind& kind : Kinds()) {
      EXPECT_TRUE(kind.save(kRoot, address));
    }
    EXPECT_TRUE(Registry::PathExists(kRoot, path));
    EXPECT_TRUE(Registry::KeyExists(kRoot, path, kCategory));
    EXPECT_TRUE(Registry::ValueExists(kRoot, path, kCategory, kName));
    EXPECT_TRUE(Registry::DeleteValue(kRoot, path, kCategory, kName));
    EXPECT_TRUE(Registry::DeleteKey(kRoot, path, kCategory));
  };
  succeed();
  const std::size_t before = testing::CountHandles();
  for (int i = 0; i < 100; ++i) {
    succeed();
  }
  EXPECT_EQ(testing::CountHandles(), before);
}

}  // namespace
}  // namespace vemora::utils
