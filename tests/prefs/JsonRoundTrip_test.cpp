// What is saved and loaded again is what it was.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using namespace std::string_view_literals;

using testing::FileOf;
using testing::OpenStore;
using testing::SavedFileOf;
using testing::StoreTest;
using testing::Utf8;
using utils::CodeUnit;

class JsonRoundTrip : public StoreTest {
 protected:
  /// Saves, loads into another store and expects the same.
  void ExpectText(const vemora_ustring& text) {
    store.WriteString(text, text, text);
    OpenStore loaded;
    Reload(loaded);
    EXPECT_EQ(loaded.ReadString(text, text, "none"), text);
  }
};

std::uint64_t BitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

double FromBits(std::uint64_t bits) {
  double value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

/// All powers of two and of ten with their neighbours, and many random bit patterns.
std::vector<double> ManyDoubles() {
  std::vector<double> values = {0.0,
                                -0.0,
                                std::numeric_limits<double>::max(),
                                std::numeric_limits<double>::lowest(),
                                std::numeric_limits<double>::min(),
                                std::numeric_limits<double>::denorm_min()};
  const auto add_with_neighbours = [&values](double value) {
    for (const double neighbour :
         {std::nextafter(value, 0.0), value, std::nextafter(value, HUGE_VAL)}) {
      values.push_back(neighbour);
      values.push_back(-neighbour);
    }
  };
  for (int exponent = -1074; exponent < 1024; ++exponent) {
    add_with_neighbours(std::ldexp(1.0, exponent));
  }
  for (int exponent = -323; exponent <= 308; ++exponent) {
    add_with_neighbours(std::pow(10.0, exponent));
  }
  std::mt19937_64 random;
  for (int count = 0; count < 20000; ++count) {
    values.push_back(FromBits(random()));
    values.push_back(static_cast<double>(random() % 1000000) / 1000.0);
  }
  values.erase(std::remove_if(values.begin(), values.end(),
                              [](double value) { return !std::isfinite(value); }),
               values.end());
  return values;
}

TEST_F(JsonRoundTrip, KeepsDoublesToTheLastBit) {
  const std::vector<double> values = ManyDoubles();
  for (std::size_t index = 0; index < values.size(); ++index) {
    store.WriteDouble("C", std::to_string(index).c_str(), values[index]);
  }
  OpenStore loaded;
  Reload(loaded);
  for (std::size_t index = 0; index < values.size(); ++index) {
    const double value = loaded.ReadDouble("C", std::to_string(index).c_str(), 12345);
    ASSERT_EQ(BitsOf(value), BitsOf(values[index])) << values[index];
  }
}

TEST_F(JsonRoundTrip, KeepsIntsToTheirLimits) {
  const std::vector<int> values = {
      0, -1, 1, 999999999, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
  for (const int value : values) {
    store.WriteInt("C", std::to_string(value).c_str(), value);
  }
  OpenStore loaded;
  Reload(loaded);
  for (const int value : values) {
    EXPECT_EQ(loaded.ReadInt("C", std::to_string(value).c_str(), 12345), value);
  }
}

TEST_F(JsonRoundTrip, KeepsEveryCodeUnitInAValue) {
  vemora_ustring text;
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    text.push_back(static_cast<CodeUnit>(unit));
  }
  // Descending, all surrogates are lone.
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    text.push_back(static_cast<CodeUnit>(0xFFFF - unit));
  }
  store.WriteString("C", "key", text);
  OpenStore loaded;
  Reload(loaded);
  EXPECT_TRUE(loaded.ReadString("C", "key", "") == text);
}

/// Texts of any length with a character that is escaped at any place, and their spellings.
std::vector<std::pair<std::string, std::string>> TextsWithAnEscape() {
  constexpr std::size_t kLongest = 40;
  std::vector<std::pair<std::string, std::string>> texts;
  for (std::size_t length = 0; length <= kLongest; ++length) {
    for (std::size_t place = 0; place <= length; ++place) {
      for (const auto& [special, escape] :
           {std::pair("\"", "\\\""), {"\\", "\\\\"}, {"\n", "\\n"}, {"\x1F", "\\u001F"}}) {
        const std::string plain(length, 'x');
        texts.emplace_back(std::string(plain).insert(place, special),
                           std::string(plain).insert(place, escape));
      }
    }
  }
  return texts;
}

class JsonRoundTripOfEscapes : public StoreTest {
 protected:
  JsonRoundTripOfEscapes() {
    for (std::size_t index = 0; index < texts.size(); ++index) {
      store.WriteString("C", std::to_string(index).c_str(), texts[index].first.c_str());
    }
  }

  const std::vector<std::pair<std::string, std::string>> texts = TextsWithAnEscape();
};

TEST_F(JsonRoundTripOfEscapes, KeepACharacterThatIsEscapedAtEachPlace) {
  OpenStore loaded;
  Reload(loaded);
  for (std::size_t index = 0; index < texts.size(); ++index) {
    EXPECT_EQ(loaded.ReadString("C", std::to_string(index).c_str(), "none"),
              vemora_ustring(texts[index].first.c_str()));
  }
}

TEST_F(JsonRoundTripOfEscapes, AreOfNoCharacterBesideOneThatIsEscaped) {
  const std::string saved = SavePrivate();
  for (std::size_t index = 0; index < texts.size(); ++index) {
    const std::string line = "\"" + std::to_string(index) + "\": \"" + texts[index].second + "\"";
    EXPECT_NE(saved.find(line), std::string::npos) << line;
  }
}

TEST_F(JsonRoundTrip, KeepsEveryAsciiCharacterInNames) {
  for (unsigned unit = 0; unit < 0x80; ++unit) {
    ExpectText(vemora_ustring(1, static_cast<CodeUnit>(unit)));
  }
}

TEST_F(JsonRoundTrip, KeepsNamesAndValuesOfEveryKind) {
  for (const std::string_view text :
       {""sv, "a\0b"sv, "\0"sv, "\"\\\""sv, "C:\\temp\\new"sv, "\\uD800\\\\uDC00\\"sv,
        "\xED\xA0\x80"sv, "\xED\xB0\x80"sv, "\xED\xB0\x80\xED\xA0\x80"sv, "\xF0\x9F\x98\x80"sv,
        "\xEF\xBF\xBF"sv, "\xEF\xBB\xBF"sv, "{\"a\": [1, null]}"sv}) {
    ExpectText(Utf8(text));
  }
}

TEST_F(JsonRoundTrip, SavesAPairOfEscapedSurrogatesAsOneCharacter) {
  LoadPrivate(FileOf(R"("\uD83D\uDE00": "\uD83D\uDE00")"));
  EXPECT_EQ(SavePrivate(), SavedFileOf("\"\xF0\x9F\x98\x80\": \"\xF0\x9F\x98\x80\""));
}

}  // namespace
}  // namespace vemora::prefs
