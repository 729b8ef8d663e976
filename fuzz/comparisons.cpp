// Comparisons of three texts: laws that an order has, and agreement with the maps of the store.
#include <set>
#include <string>

#include "fuzz/fuzz_support.h"
#include "prefs/FoldedName.h"

namespace {

using vemora::prefs::CompareNames;
using vemora::prefs::FoldedName;

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)

bool HasDigit(const vemora_ustring& text) {
  return text.find_first_of(vemora_ustring("0123456789")) != vemora_ustring::npos;
}

/// What the store goes by, for names as they are given and as it keeps them.
void CheckNames(const vemora_ustring& left, const vemora_ustring& right) {
  const std::string left_utf8 = left.ToUtf8();
  const std::string right_utf8 = right.ToUtf8();
  const int order = left.CompareNoCase(right);
  Check(CompareNames(left_utf8, right_utf8) == order, "stored names have the same order");
  const FoldedName folded(left);
  Check((folded == FoldedName(right)) == (order == 0), "equal names fold to the same");
  Check((folded == FoldedName(right_utf8)) == (order == 0), "stored names fold to the same");
  Check(order != 0 || folded.Hash() == FoldedName(right_utf8).Hash(), "equal names hash alike");
}

void CheckPair(const vemora_ustring& left, const vemora_ustring& right) {
  const int no_case = left.CompareNoCase(right);
  const int natural = left.CompareNatural(right);
  Check(no_case >= -1 && no_case <= 1, "CompareNoCase gives -1, 0 or 1");
  Check(natural >= -1 && natural <= 1, "CompareNatural gives -1, 0 or 1");
  Check(no_case == -right.CompareNoCase(left), "CompareNoCase is antisymmetric");
  Check(natural == -right.CompareNatural(left), "CompareNatural is antisymmetric");
  CheckNames(left, right);
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
