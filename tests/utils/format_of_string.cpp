// Must not compile: a string is no argument of Format.
#include "utils/vemora_ustring.h"

int main() {
  vemora::utils::vemora_ustring text;
  text.Format("%s", text);
}
