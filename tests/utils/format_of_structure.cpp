// Must not compile: a structure is no argument of Format.
#include "utils/vemora_ustring.h"

struct Size {
  int width;
  int height;
};

int main() {
  vemora::utils::vemora_ustring text;
  text.Format("%d x %d", Size{1, 2});
}
