#include "Match.h"

#include <cstddef>

namespace vemora::tool {

bool Matches(const vemora_ustring& name, const vemora_ustring& pattern) {
  vemora_ustring text = name;
  vemora_ustring wanted = pattern;
  text.ToUpper();
  wanted.ToUpper();
  std::size_t at = 0;
  std::size_t next = 0;
  std::size_t star = vemora_ustring::npos;  // the latest *, and what it stands for so far
  std::size_t after_star = 0;
  while (at < text.size()) {
    if (next < wanted.size() && wanted[next] == '*') {
      star = next++;
      after_star = at;
    } else if (next < wanted.size() && (wanted[next] == '?' || wanted[next] == text[at])) {
      ++next;
      ++at;
    } else if (star != vemora_ustring::npos) {
      next = star + 1;
      at = ++after_star;
    } else {
      return false;
    }
  }
  return wanted.find_first_not_of(L'*', next) == vemora_ustring::npos;
}

bool Contains(vemora_ustring text, vemora_ustring part) {
  return text.ToUpper().find(part.ToUpper()) != vemora_ustring::npos;
}

}  // namespace vemora::tool
