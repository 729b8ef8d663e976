// Every code point, lone surrogates among them, through a file: in names of categories, in names
// of keys and in values.

#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "prefs/store_support.h"
#include "stress.h"
#include "utf8_decoder.h"

namespace vemora::prefs {
namespace {

using testing::OpenStore;
using testing::StoreTest;

constexpr char32_t kPlaneSize = 0x10000;
constexpr char32_t kPlanes = 17;

/// The code points of a plane, or every 61st; the ends of each run of 128 always, for no length of
/// an encoding changes elsewhere.
std::vector<char32_t> PointsOf(char32_t plane) {
  const char32_t step = testing::WholeOrSample(1, 61);
  std::vector<char32_t> points;
  for (char32_t point = plane * kPlaneSize; point < (plane + 1) * kPlaneSize; ++point) {
    if (point % step == 0 || point % 128 == 0 || point % 128 == 127) {
      points.push_back(point);
    }
  }
  return points;
}

template <typename... Numbers>
std::string Format(const char* format, Numbers... numbers) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), format, numbers...);
  return text.data();
}

vemora_ustring TextOf(char32_t point) { return testing::ToUtf16({&point, 1}); }

/// The code point and its number: a name of its own, whatever other names it equals but for case.
std::string NumberOf(char32_t point) { return Format(" %X", unsigned{point}); }
vemora_ustring NameOf(char32_t point) { return TextOf(point) + testing::Utf8(NumberOf(point)); }

/// The code point as a file may spell it in ASCII.
std::string EscapeOf(char32_t point) {
  std::string escapes;
  for (const utils::CodeUnit unit : TextOf(point)) {
    escapes += Format("\\u%04X", unsigned{unit});
  }
  return escapes;
}

class EveryCodePoint : public StoreTest, public ::testing::WithParamInterface<char32_t> {
 protected:
  void ExpectAllIn(OpenStore& loaded) {
    for (const char32_t point : points) {
      const vemora_ustring name = NameOf(point);
      ASSERT_EQ(loaded.ReadString(name, name, "none"), TextOf(point)) << NumberOf(point);
    }
  }

  const std::vector<char32_t> points = PointsOf(GetParam());
};

TEST_P(EveryCodePoint, ComesBackFromASavedFile) {
  for (const char32_t point : points) {
    store.WriteString(NameOf(point), NameOf(point), TextOf(point));
  }
  OpenStore loaded;
  Reload(loaded);
  ExpectAllIn(loaded);
}

TEST_P(EveryCodePoint, IsReadFromItsEscapes) {
  std::string categories;
  for (const char32_t point : points) {
    const std::string escape = EscapeOf(point);
    const std::string name = '"' + escape + NumberOf(point) + '"';
    categories += categories.empty() ? "" : ",";
    categories += name + ":{" + name + ":\"" + escape + "\"}";
  }
  LoadPrivate("{\"This Computer Only\":{" + categories + "}}");
  ExpectAllIn(store);
}

INSTANTIATE_TEST_SUITE_P(Planes, EveryCodePoint, ::testing::Range(char32_t{0}, kPlanes),
                         [](const auto& test) { return Format("Plane%u", unsigned{test.param}); });

}  // namespace
}  // namespace vemora::prefs
