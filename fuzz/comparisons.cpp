// Comparisons of three texts: laws that an order has, and agreement with the names of the store.
#include <set>
#include <string>

#include "fuzz/fuzz_support.h"
#include "prefs/store/LevelTable.h"
#include "prefs/store/Name.h"

namespace {

using vemora::prefs::CompareNames;
using vemora::prefs::ENameMatch;
using vemora::prefs::LevelTable;
using vemora::prefs::Name;

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)

bool HasDigit(const vemora_ustring& text) {
  return text.find_first_of(vemora_ustring("0123456789")) != vemora_ustring::npos;
}

vemora_ustring UpperAscii(vemora_ustring text) {
  for (CodeUnit& unit : text) {
    unit = static_cast<CodeUnit>(unit >= 'a' && unit <= 'z' ? unit - 'a' + 'A' : unit);
  }
  return text;
}

/// How a name that is looked for matches a stored one, behind which there are zeros.
ENameMatch MatchStored(const Name& name, const std::string& stored) {
  const std::string padded = stored + std::string(8, '\0');
  return name.Match({padded.data(), stored.size()}, Name(stored).IsAscii());
}

/// What the store goes by, for names as they are given and as it keeps them.
void CheckNames(const vemora_ustring& left, const vemora_ustring& right) {
  const std::string left_utf8 = left.ToUtf8();
  const std::string right_utf8 = right.ToUtf8();
  const int order = left.CompareNoCase(right);
  Check(CompareNames(left_utf8, right_utf8) == order, "stored names have the same order");
  const Name name(left);
  const Name stored(right_utf8);
  Check(name.Utf8() == left_utf8, "a name is kept as UTF-8");
  Check(order != 0 || name.Hash() == stored.Hash(), "equal names hash alike");
  const ENameMatch match = MatchStored(name, right_utf8);
  Check((match != ENameMatch::kNone) == (order == 0), "equal names, and no others, match");
  Check(left != right || match == ENameMatch::kExact, "the same spelling matches exactly");
  Check(match != ENameMatch::kExact || UpperAscii(left) == UpperAscii(right),
        "only the case of ASCII letters differs in an exact match");
  Check(MatchStored(stored, left_utf8) == match, "names match in both directions");
}

void CheckTable(const vemora_ustring& left, const vemora_ustring& right) {
  LevelTable table;
  table.Set({left, right}, 1);
  Check(table.FindCategory(Name(left)) != nullptr, "a category is found under its name");
  Check((table.FindCategory(Name(right)) != nullptr) == (left.CompareNoCase(right) == 0),
        "a category is found under an equal name, and no other");
  Check(table.Find({left, right}) != nullptr, "a preference is found under its names");
  Check((table.Find({right, left}) != nullptr) == (left.CompareNoCase(right) == 0),
        "a preference is found under equal names, and no others");
}

void CheckPair(const vemora_ustring& left, const vemora_ustring& right) {
  const int no_case = left.CompareNoCase(right);
  const int natural = left.CompareNatural(right);
  Check(no_case >= -1 && no_case <= 1, "CompareNoCase gives -1, 0 or 1");
  Check(natural >= -1 && natural <= 1, "CompareNatural gives -1, 0 or 1");
  Check(no_case == -right.CompareNoCase(left), "CompareNoCase is antisymmetric");
  Check(natural == -right.CompareNatural(left), "CompareNatural is antisymmetric");
  CheckNames(left, right);
  CheckTable(left, right);
  Check(no_case != 0 || natural == 0, "texts that differ in case only are equal to CompareNatural");
  if (!HasDigit(left) && !HasDigit(right)) {
    Check(natural == no_case, "CompareNatural without digits is CompareNoCase");
  }
  vemora_ustring left_upper = left;
  vemora_ustring right_upper = right;
  Check(left_upper.ToUpper().CompareNoCase(left) == 0, "CompareNoCase ignores ToUpper");
  const int upper = left_upper.compare(right_upper.ToUpper());
  Check(no_case == (upper > 0) - (upper < 0), "CompareNoCase orders as the upper case does");
}

void CheckTriple(const vemora_ustring& a, const vemora_ustring& b, const vemora_ustring& c) {
  if (a.CompareNoCase(b) <= 0 && b.CompareNoCase(c) <= 0) {
    const bool equal = a.CompareNoCase(b) == 0 && b.CompareNoCase(c) == 0;
    Check(a.CompareNoCase(c) == (equal ? 0 : -1), "CompareNoCase is transitive");
  }
}

void CheckSet(const std::array<vemora_ustring, 3>& texts) {
  std::set<vemora_ustring, vemora::utils::NoCaseLess> names(texts.begin(), texts.end());
  for (const vemora_ustring& text : texts) {
    const auto found = names.find(text);
    Check(found != names.end(), "a set finds each of its names");
    Check(found->CompareNoCase(text) == 0, "a set finds the name that CompareNoCase equals");
  }
  for (auto name = names.begin(), next = name; ++next != names.end(); name = next) {
    Check(name->CompareNoCase(*next) == -1, "a set has the order of CompareNoCase");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kLongest = 100;
  UseUnicodeLocale();
  Input input(data, size);
  const std::array<vemora_ustring, 3> texts = {input.TakeText(kLongest), input.TakeText(kLongest),
                                               input.TakeText(kLongest)};
  for (const vemora_ustring& a : texts) {
    for (const vemora_ustring& b : texts) {
      CheckPair(a, b);
      for (const vemora_ustring& c : texts) {
        CheckTriple(a, b, c);
      }
    }
  }
  CheckSet(texts);
  return 0;
}
