// Comparisons of three texts: laws that an order has, and agreement with the maps of the store.
#include "fuzz/fuzz_support.h"

namespace {

using namespace vemora::fuzz;  // NOLINT(google-build-using-namespace)

bool HasDigit(const vemora_ustring& text) {
  return text.find_first_of(vemora_ustring("0123456789")) != vemora_ustring::npos;
}

void CheckPair(const vemora_ustring& left, const vemora_ustring& right) {
  const int no_case = left.CompareNoCase(right);
  const int natural = left.CompareNatural(right);
  Check(no_case >= -1 && no_case <= 1, "CompareNoCase gives -1, 0 or 1");
  Check(natural >= -1 && natural <= 1, "CompareNatural gives -1, 0 or 1");
  Check(no_case == -right.CompareNoCase(left), "CompareNoCase is antisymmetric");
  Check(natural == -right.CompareNatural(left), "CompareNatural is antisymmetric");
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

void CheckMap(const std::array<vemora_ustring, 3>& texts) {
  vemora::prefs::CategoryMap<int> map;
  for (const vemora_ustring& text : texts) {
    map[text];
  }
  for (const vemora_ustring& text : texts) {
    const auto found = map.find(text);
    Check(found != map.end(), "a map finds each of its names");
    Check(found->first.CompareNoCase(text) == 0, "a map finds the name that CompareNoCase equals");
  }
  for (auto entry = map.begin(), next = entry; ++next != map.end(); entry = next) {
    Check(entry->first.CompareNoCase(next->first) == -1, "a map has the order of CompareNoCase");
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
  CheckMap(texts);
  return 0;
}
