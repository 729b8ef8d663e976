// Every allocation of every operation of a text, a path and a Variant fails in turn: the value that
// the operation was to change is the old one or the new one.

#include <functional>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "failing_allocator.h"
#include "support.h"
#include "utils/Dictionary.h"
#include "utils/PathText.h"
#include "utils/Variant.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {
namespace {

using testing::Succeeds;

/// Something that changes a value.
template <typename Value>
struct Operation {
  const char* name;
  void (*run)(Value& value);
};

template <typename Value>
void PrintTo(const Operation<Value>& operation, std::ostream* out) {
  *out << operation.name;
}

/// Runs the operation on copies of `old_value` with more and more memory.
template <typename Value, typename Describe>
void ExpectOldOrNew(const Operation<Value>& operation, const Value& old_value, Describe describe) {
  Value changed = old_value;
  operation.run(changed);
  const std::string before = describe(old_value);
  const std::string after = describe(changed);
  bool success = false;
  int allocations = 0;
  for (; !success; ++allocations) {
    Value value = old_value;
    success = Succeeds(allocations, [&value, &operation] { operation.run(value); });
    EXPECT_EQ(describe(value), success ? after : before) << allocations << " allocations";
  }
  EXPECT_GT(allocations, 1) << "the operation takes no memory";
}

// --- texts and paths ------------------------------------------------------------------------

using TextOperation = Operation<vemora_ustring>;

class TextOutOfMemory : public ::testing::TestWithParam<TextOperation> {};

TEST_P(TextOutOfMemory, LeavesTheOldTextOrTheNew) {
  ExpectOldOrNew<vemora_ustring>(
      GetParam(), "  12345678901234567.5/a folder of long enough a name %d/and a file.txt  ",
      [](const vemora_ustring& text) { return text.ToUtf8(); });
}

const vemora_ustring kText =
    "a new text that is long enough to be on the heap, and longer than what it takes the place of";
const vemora_ustring kSeparators = "//";
constexpr char kNarrow[] = "a new narrow text that is long enough to be on the heap";

void AssignNumber(vemora_ustring& text, double number) { text = std::to_string(number).c_str(); }

const std::vector<TextOperation> kTextOperations = {
    {"AssignmentOfAText", [](vemora_ustring& text) { text = kText; }},
    {"AssignmentOfUnits", [](vemora_ustring& text) { text = kText.c_str(); }},
    {"AssignmentOfNarrowText", [](vemora_ustring& text) { text = kNarrow; }},
    {"ConstructionFromUnits", [](vemora_ustring& text) { text = vemora_ustring(kText.c_str()); }},
    {"ConstructionFromNarrowText", [](vemora_ustring& text) { text = vemora_ustring(kNarrow); }},
    {"FromUtf8", [](vemora_ustring& text) { text = vemora_ustring::FromUtf8(kNarrow); }},
    {"ToUtf8", [](vemora_ustring& text) { text = vemora_ustring::FromUtf8(text.ToUtf8() + '!'); }},
    {"ToStdString", [](vemora_ustring& text) { text = (text.ToStdString() + '!').c_str(); }},
    {"ToUpper", [](vemora_ustring& text) { text = vemora_ustring(text).ToUpper(); }},
    {"ToLower", [](vemora_ustring& text) { text = vemora_ustring(text).ToLower(); }},
    {"TrimLeft", [](vemora_ustring& text) { text = vemora_ustring(text).TrimLeft(); }},
    {"TrimRight", [](vemora_ustring& text) { text = vemora_ustring(text).TrimRight(); }},
    {"IsDouble", [](vemora_ustring& text) { AssignNumber(text, text.IsDouble() ? 1 : 0); }},
    {"IsInt", [](vemora_ustring& text) { AssignNumber(text, text.IsInt() ? 1 : 0); }},
    {"IsUnsigned", [](vemora_ustring& text) { AssignNumber(text, text.IsUnsigned() ? 1 : 0); }},
    {"ToDouble", [](vemora_ustring& text) { AssignNumber(text, text.ToDouble()); }},
    {"ToFloat", [](vemora_ustring& text) { AssignNumber(text, text.ToFloat()); }},
    {"ToInt", [](vemora_ustring& text) { AssignNumber(text, text.ToInt()); }},
    {"ToLong",
     [](vemora_ustring& text) { AssignNumber(text, static_cast<double>(text.ToLong())); }},
    {"Format", [](vemora_ustring& text) { text.Format("%d %s", 7, kText.c_str()); }},
    {"FormatOfItself", [](vemora_ustring& text) { text.Format(text, 7); }},
    {"NormalizePath", [](vemora_ustring& text) { text = NormalizePath(text + kSeparators); }},
    {"JoinPath", [](vemora_ustring& text) { text = JoinPath(text, kText); }},
    {"GetParentFolder", [](vemora_ustring& text) { text = GetParentFolder(text); }},
    {"GetFileName", [](vemora_ustring& text) { text = GetFileName(text, false); }},
    {"GetFileExtension", [](vemora_ustring& text) { text = GetFileExtension(text + kText); }},
};

INSTANTIATE_TEST_SUITE_P(Operations, TextOutOfMemory, ::testing::ValuesIn(kTextOperations),
                         [](const auto& operation) { return std::string(operation.param.name); });

static_assert(std::is_nothrow_move_constructible_v<vemora_ustring>);

TEST(TextWithoutMemory, IsMappedTrimmedAndCompared) {
  vemora_ustring text = "  A text that is long enough to be on the heap  ";
  const vemora_ustring other = "another text that is long enough to be on the heap";
  EXPECT_TRUE(Succeeds(0, [&text, &other] {
    text.TrimLeft().TrimRight().ToUpper().ToLower();
    text.CompareNoCase(other);
    text.CompareNatural(other);
  }));
  EXPECT_EQ(text, vemora_ustring("a text that is long enough to be on the heap"));
}

// --- Variants -------------------------------------------------------------------------------

std::string DescribeValue(const Variant& value) {
  switch (value.GetType()) {
    case Variant::kString:
      return value.GetString().ToUtf8();
    case Variant::kVector: {
      std::string elements = "[";
      for (const Variant& element : value.GetVector()) {
        elements += DescribeValue(element) + ',';
      }
      return elements + ']';
    }
    case Variant::kDictionary: {
      std::string entries = "{";
      for (const auto& [key, entry] : value.GetDictionary()) {
        entries += key.ToUtf8() + ':' + DescribeValue(entry) + ',';
      }
      return entries + '}';
    }
    default:
      return std::to_string(value.GetInt());
  }
}

using VariantOperation = Operation<Variant>;

class VariantOutOfMemory : public ::testing::TestWithParam<VariantOperation> {};

TEST_P(VariantOutOfMemory, LeavesTheOldValueOrTheNew) {
  const Variant inner(Variant::Vector{Variant(kText), Variant(7)});
  ExpectOldOrNew<Variant>(GetParam(), Variant(Variant::Map{{kText, inner}}), DescribeValue);
}

const std::vector<VariantOperation> kVariantOperations = {
    {"AssignmentOfAText", [](Variant& value) { value = kText; }},
    {"AssignmentOfAVector",
     [](Variant& value) {
       value = Variant::Vector{Variant(kText), value};
     }},
    {"AssignmentOfADictionary",
     [](Variant& value) {
       value = Variant::Map{{"outer", value}};
     }},
    {"AssignmentOfAPart", [](Variant& value) { value = value.Get(kText); }},
    {"Copy", [](Variant& value) { value = Variant(value).Get(kText).At(1); }},
    {"TryGetString",
     [](Variant& value) {
       vemora_ustring text;
       value.Get(kText).At(0).TryGetString(text);
       value = text + text;
     }},
    {"GetKeys", [](Variant& value) { value = value.GetKeys().front(); }},
    {"AssignmentInside", [](Variant& value) { value.Get(kText).At(1) = kText; }},
};

INSTANTIATE_TEST_SUITE_P(Operations, VariantOutOfMemory, ::testing::ValuesIn(kVariantOperations),
                         [](const auto& operation) { return std::string(operation.param.name); });

// --- dictionaries ---------------------------------------------------------------------------

using DictionaryOperation = Operation<Dictionary>;

class DictionaryOutOfMemory : public ::testing::TestWithParam<DictionaryOperation> {};

TEST_P(DictionaryOutOfMemory, LeavesTheOldEntriesOrTheNew) {
  Dictionary dictionary;
  dictionary.Set("old", Variant(Variant::Vector{Variant(7)}));
  ExpectOldOrNew<Dictionary>(GetParam(), dictionary, [](const Dictionary& entries) {
    return DescribeValue(Variant(entries.values));
  });
}

const Variant kNewValue(Variant::Vector{Variant(kText), Variant(8)});

const std::vector<DictionaryOperation> kDictionaryOperations = {
    {"SetOfANewKey", [](Dictionary& dictionary) { dictionary.Set(kText, kNewValue); }},
    {"SetOfAnOldKey", [](Dictionary& dictionary) { dictionary.Set("old", kNewValue); }},
};

INSTANTIATE_TEST_SUITE_P(Operations, DictionaryOutOfMemory,
                         ::testing::ValuesIn(kDictionaryOperations),
                         [](const auto& operation) { return std::string(operation.param.name); });

}  // namespace
}  // namespace vemora::utils
