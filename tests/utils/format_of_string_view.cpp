// Must not compile: a view is no argument of Format, which would read its pointer and its length as
// text.
#include <string_view>

#include "utils/vemora_ustring.h"

int main() {
  vemora::utils::vemora_ustring text;
  text.Format("%s", std::basic_string_view<vemora::utils::CodeUnit>());
}
