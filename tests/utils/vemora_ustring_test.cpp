#include "utils/vemora_ustring.h"

#include "support.h"

namespace vemora::utils {
namespace {

TEST(Utf8, RoundTrips) { EXPECT_EQ(vemora_ustring::FromUtf8("a\xC3\xA9").ToUtf8(), "a\xC3\xA9"); }

}  // namespace
}  // namespace vemora::utils
