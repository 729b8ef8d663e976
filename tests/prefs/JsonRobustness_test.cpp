#include <string>
#include <string_view>

#include "prefs/JsonCommon.h"
#include "prefs/store_support.h"

namespace vemora::prefs {
namespace {

using namespace std::string_literals;

using testing::OpenStore;
using testing::StoreTest;
using testing::Utf8;
using testing::WriteBytes;
using utils::CodeUnit;

/// A small file with something of everything.
constexpr std::string_view kSample =
    R"({"This Computer Only": {"C": {"bool": true, "int": -12, "double": 0.5e-3, "null": null,)"
    R"("text": "a\n\"\\\u00e9\ud83d\ude00 )"
    "\xC3\xA9"
    R"(", "list": [1, "x", {"y": false}]}, "D\u0000": {"k": 100000000000000000000}}})";

std::string Repeated(std::string_view part, std::size_t count) {
  std::string text;
  text.reserve(part.size() * count);
  for (; count > 0; --count) {
    text += part;
  }
  return text;
}

class JsonRobustness : public StoreTest {
 protected:
  /// What a store that held one value saves after it has loaded the text.
  std::string SavedAfterLoading(std::string_view text) {
    WriteBytes(private_file, text);
    OpenStore loaded;
    loaded.SetPaths(store.GetPrivatePath(), store.GetSharedPath());
    loaded.SetSavePrefsFlag(false, false);
    loaded.WriteInt("Before", "key", 1);
    loaded.LoadPrivatePreferences();
    loaded.SavePrivatePreferences();
    return testing::ReadBytes(private_file);
  }

  /// What it saves when the text changed nothing.
  const std::string unchanged = SavedAfterLoading("");
};

// Nesting

constexpr std::size_t kDepth = 1000000;

TEST_F(JsonRobustness, SkipsArraysNestedAMillionLevelsDeep) {
  LoadPrivate(R"({"0": {"C": {"a": 1, "deep": )" + std::string(kDepth, '[') +
              std::string(kDepth, ']') + R"(, "z": 2}}})");
  EXPECT_EQ(store.ReadInt("C", "a", 0), 1);
  EXPECT_EQ(store.ReadInt("C", "z", 0), 2);
  EXPECT_FALSE(store.IsPreferenceSet("C", "deep"));
}

TEST_F(JsonRobustness, SkipsObjectsNestedAMillionLevelsDeep) {
  LoadPrivate(R"({"0": {"C": {"a": 1, "deep": )" + Repeated("{\"k\":", kDepth) + "1" +
              std::string(kDepth, '}') + R"(, "z": 2}}})");
  EXPECT_EQ(store.ReadInt("C", "a", 0), 1);
  EXPECT_EQ(store.ReadInt("C", "z", 0), 2);
  EXPECT_FALSE(store.IsPreferenceSet("C", "deep"));
}

TEST_F(JsonRobustness, ReadsARootNestedAMillionLevelsDeepAsNothing) {
  EXPECT_EQ(SavedAfterLoading(std::string(kDepth, '[') + std::string(kDepth, ']')), unchanged);
}

TEST_F(JsonRobustness, IgnoresAMillionBracketsThatAreNeverClosed) {
  EXPECT_EQ(SavedAfterLoading(std::string(kDepth, '[')), unchanged);
  EXPECT_EQ(SavedAfterLoading(Repeated("{\"k\":", kDepth)), unchanged);
  EXPECT_EQ(SavedAfterLoading(Repeated("[{\"k\":", kDepth)), unchanged);
}

TEST_F(JsonRobustness, IgnoresAMillionBracketsThatAreClosedWrongly) {
  EXPECT_EQ(SavedAfterLoading(std::string(kDepth, '[') + std::string(kDepth, '}')), unchanged);
  EXPECT_EQ(SavedAfterLoading(std::string(kDepth, '[') + std::string(kDepth + 1, ']')), unchanged);
}

// Size

TEST_F(JsonRobustness, KeepsAStringOf64MiB) {
  constexpr std::size_t kLength = std::size_t{64} << 20;
  LoadPrivate(R"({"0": {"C": {"large": ")" + std::string(kLength, 'x') + R"(", "z": 2}}})");
  OpenStore loaded;
  Reload(loaded);
  EXPECT_TRUE(loaded.ReadString("C", "large", "") == vemora_ustring(kLength, CodeUnit{'x'}));
  EXPECT_EQ(loaded.ReadInt("C", "z", 0), 2);
}

TEST_F(JsonRobustness, KeepsAHundredThousandKeys) {
  constexpr int kCount = 100000;
  std::string members;
  for (int key = 0; key < kCount; ++key) {
    members += ", \"" + std::to_string(key) + "\": " + std::to_string(key);
  }
  LoadPrivate("{\"0\": {\"C\": {\"a\": 1" + members + "}}}");
  for (int key = 0; key < kCount; ++key) {
    ASSERT_EQ(store.ReadInt("C", std::to_string(key).c_str(), -1), key);
  }
}

// Damaged files

TEST_F(JsonRobustness, SavesWhatTheSampleHolds) {
  EXPECT_EQ(SavedAfterLoading(kSample),
            "{\n"
            "    \"This Computer Only\": {\n"
            "        \"C\": {\n"
            "            \"bool\": true,\n"
            "            \"double\": 0.0005,\n"
            "            \"int\": -12,\n"
            "            \"text\": \"a\\n\\\"\\\\\xC3\xA9\xF0\x9F\x98\x80 \xC3\xA9\"\n"
            "        },\n"
            "        \"D\\u0000\": {\n"
            "            \"k\": 100000000000000000000.0\n"
            "        }\n"
            "    }\n"
            "}");
}

TEST_F(JsonRobustness, IgnoresEveryTruncatedFile) {
  for (std::size_t length = 0; length < kSample.size(); ++length) {
    EXPECT_EQ(SavedAfterLoading(kSample.substr(0, length)), unchanged) << length;
  }
}

TEST_F(JsonRobustness, IgnoresEveryFileWithoutItsBeginning) {
  for (std::size_t start = 1; start < kSample.size(); ++start) {
    // A text or a number is JSON as well; but only an object gives anything.
    EXPECT_EQ(SavedAfterLoading(kSample.substr(start)), unchanged) << start;
  }
}

TEST_F(JsonRobustness, SavesWhateverAFileWithAWrongByteGivesSoThatItLoadsBackEqual) {
  for (std::size_t position = 0; position < kSample.size(); ++position) {
    for (const char byte : {'\0', '\x01', ' ', '"', '\\', '0', '9',    'e',    '-',    'u',
                            '{',  '}',    '[', ']', ',',  ':', '\x7F', '\x80', '\xED', '\xFF'}) {
      std::string text(kSample);
      text[position] = byte;
      const std::string saved = SavedAfterLoading(text);
      ASSERT_EQ(SavedAfterLoading(saved), saved) << position << ", " << static_cast<int>(byte);
    }
  }
}

TEST_F(JsonRobustness, SavesWhateverAFileWithoutOneByteGivesSoThatItLoadsBackEqual) {
  for (std::size_t position = 0; position < kSample.size(); ++position) {
    std::string text(kSample);
    text.erase(position, 1);
    const std::string saved = SavedAfterLoading(text);
    ASSERT_EQ(SavedAfterLoading(saved), saved) << position;
  }
}

// Malformed texts

class JsonRobustnessMalformed : public JsonRobustness,
                                public ::testing::WithParamInterface<std::string> {};

TEST_P(JsonRobustnessMalformed, ValueMakesTheWholeFileIgnored) {
  EXPECT_EQ(SavedAfterLoading(R"({"0": {"C": {"a": 1, "k": )" + GetParam() + R"(, "z": 2}}})"),
            unchanged);
}

TEST_P(JsonRobustnessMalformed, ValueWithMuchBehindItMakesTheWholeFileIgnored) {
  EXPECT_EQ(SavedAfterLoading(R"({"0": {"C": {"a": 1, "k": )" + GetParam() + R"(, "z": ")" +
                              std::string(100, 'z') + R"("}}})"),
            unchanged);
}

INSTANTIATE_TEST_SUITE_P(Number, JsonRobustnessMalformed,
                         ::testing::Values("+1", "-", "--1", "- 1", "01", "-01", "00", ".5", "-.5",
                                           "1.", "1.e5", "1e", "1e+", "1e-", "1E", "1e1.5", "0x10",
                                           "1_000", "1,5", "1 2", "NaN", "-NaN", "nan", "Infinity",
                                           "-Infinity", "inf", "1f", "0b1", "\xEF\xBC\x91"));

INSTANTIATE_TEST_SUITE_P(Literal, JsonRobustnessMalformed,
                         ::testing::Values("True", "TRUE", "tru", "truee", "fals", "nul", "None",
                                           "undefined", "yes", "", "true false", "\xFF"));

INSTANTIATE_TEST_SUITE_P(String, JsonRobustnessMalformed,
                         ::testing::Values("'x'", "\"x", "x\"", "x", R"("\x41")", R"("\a")",
                                           R"("\')", R"("\u")", R"("\u12")", R"("\u123")",
                                           R"("\u12G4")", R"("\uD80")", R"("\uD800\u12")",
                                           R"("\U0041")", R"("\")", R"("\\\")", "\"a\nb\"",
                                           "\"a\tb\"", "\"\x1F\"", "\"a\" \"b\"", "\"a\0b\""s,
                                           R"(\u0041)"));

INSTANTIATE_TEST_SUITE_P(Container, JsonRobustnessMalformed,
                         ::testing::Values("[", "]", "[1", "1]", "[1,]", "[,1]", "[1 2]", "[1,,2]",
                                           "[1}", "[:]", "{", "{\"a\"}", "{\"a\":}", "{\"a\":1,}",
                                           "{,\"a\":1}", "{\"a\" 1}", "{\"a\":1 \"b\":2}", "{a:1}",
                                           "{1:1}", "{'a':1}", "{\"a\":1]", "{\"a\"::1}",
                                           "{null:1}", "{[]:1}"));

INSTANTIATE_TEST_SUITE_P(Comment, JsonRobustnessMalformed,
                         ::testing::Values("/* c */ 1", "1 // c\n", "1 # c\n", "1 \xC2\xA0",
                                           "\xEF\xBB\xBF 1", "\v1", "\f1"));

class JsonRobustnessMalformedFile : public JsonRobustness,
                                    public ::testing::WithParamInterface<std::string> {};

TEST_P(JsonRobustnessMalformedFile, IsIgnored) {
  EXPECT_EQ(SavedAfterLoading(GetParam()), unchanged);
}

INSTANTIATE_TEST_SUITE_P(
    Text, JsonRobustnessMalformedFile,
    ::testing::Values(
        "\n", "x", "\"", "\\", "\\u", "\\uD800", "\"\\uD800", "\"\\uD800\\uDC",
        R"({"0": {"C": {"k": 1}}}})", R"({"0": {"C": {"k": 1}}} {})", R"({"0": {"C": {"k": 1}}},)",
        R"({"0": {"C": {"k": 1}}} x)", R"({"0": {"C": {"k": 1}})", R"("0": {"C": {"k": 1}})",
        R"({"0", {"C": {"k": 1}}})", R"({"0": {"C": {"k": 1}},})", R"({"0": {"C": {"k": 1},}})",
        R"({"0": {"C" {"k": 1}}})", "\xEF\xBB{\"0\": {\"C\": {\"k\": 1}}}",
        "\xFF\xFE{\"0\": {\"C\": {\"k\": 1}}}", "{\"0\": {\"C\": {\"k\n\": 1}}}",
        "\0{\"0\": {\"C\": {\"k\": 1}}}"s, "{\"0\": {\"C\": \0{\"k\": 1}}}"s, "{\0\"\0"s, "\0"s));

}  // namespace
}  // namespace vemora::prefs
