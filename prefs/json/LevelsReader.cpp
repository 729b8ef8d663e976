#include "prefs/json/LevelsReader.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "prefs/json/JsonAllocator.h"
#include "prefs/json/JsonNumber.h"
#include "prefs/json/SurrogateEscapes.h"
#include "prefs/store/LevelBuilder.h"
#include "utils/Utf8.h"

namespace vemora::prefs {

namespace {

using rapidjson::SizeType;

/// Takes what RapidJSON finds and puts it into new levels. Each function returns whether the text
/// is good so far.
class LevelsHandler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, LevelsHandler> {
 public:
  LevelsHandler(std::size_t count, TextFindings& findings) : levels_(count), findings_(findings) {}

  LoadedLevels Take() { return std::move(levels_); }

  bool Null() { return Skip(findings_.nulls); }

  bool Bool(bool value) { return Add(value); }

  bool String(const char* text, SizeType size, bool /*copy*/) {
    return IsIn(kCategory) ? Add(utils::ReplaceIllFormedUtf8({text, size}, text_))
                           : Skip(findings_.misplaced);
  }

  bool RawNumber(const char* text, SizeType size, bool /*copy*/) {
    const std::optional<JsonNumber> number = ReadJsonNumber({text, size});
    if (!number.has_value()) {
      return false;
    }
    if (const int* const integer = std::get_if<int>(&*number)) {
      return Add(*integer);
    }
    const double* const real = std::get_if<double>(&*number);
    return real != nullptr ? Add(*real) : Skip(findings_.large_integers);
  }

  bool Key(const char* name, SizeType size, bool /*copy*/) {
    name_ = {name, size};
    members_ += IsIn(kRoot) ? 1 : 0;
    return size <= kLongestName;
  }

  bool StartObject() {
    if (skipped_ > 0 || depth_ == kCategory || (depth_ == kRoot && members_ > levels_.size())) {
      return SkipContents(findings_.objects);
    }
    ++depth_;
    if (depth_ == kLevel) {
      builder_.emplace(levels_[members_ - 1].emplace().Own());
    } else if (depth_ == kCategory) {
      builder_->StartCategory(name_);
    }
    return true;
  }

  bool EndObject(SizeType /*members*/) {
    if (skipped_ > 0) {
      return EndArray(0);
    }
    if (depth_ == kLevel) {
      builder_->Finish();
    }
    --depth_;
    return true;
  }

  bool StartArray() { return SkipContents(findings_.arrays); }

  bool EndArray(SizeType /*elements*/) {
    --skipped_;
    return true;
  }

 private:
  /// Objects within objects.
  enum Depth { kNone, kRoot, kLevel, kCategory };

  bool IsIn(Depth depth) const { return skipped_ == 0 && depth_ == depth; }

  bool Add(const StoredValue& value) {
    if (!IsIn(kCategory)) {
      return Skip(findings_.misplaced);
    }
    builder_->Add(name_, value);
    return true;
  }

  /// @param kind of what is skipped, if it stands where preferences do
  bool Skip(std::uint32_t& kind) {
    if (skipped_ == 0) {
      ++(depth_ == kCategory ? kind : findings_.misplaced);
    }
    return true;
  }

  /// What is inside is not looked at.
  bool SkipContents(std::uint32_t& kind) {
    Skip(kind);
    ++skipped_;
    return true;
  }

  LoadedLevels levels_;
  TextFindings& findings_;
  std::size_t members_ = 0;  // of the root
  int depth_ = kNone;
  std::size_t skipped_ = 0;  // objects and arrays that are open and not looked at
  std::string_view name_;    // the latest one
  std::string text_;
  std::optional<LevelBuilder> builder_;  // of the level that is read
};

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

const char* ToMessage(const rapidjson::ParseResult& result) {
  // The handler refuses nothing else but names of 64 MiB.
  return result.Code() == rapidjson::kParseErrorTermination
             ? "A number is too large for a double, or a name too long."
             : rapidjson::GetParseError_En(result.Code());
}

}  // namespace

LoadedLevels ReadLevels(char* text, std::size_t size, std::size_t count, TextFindings& findings) {
  UnescapeLoneSurrogates(text, size);
  const bool marked = std::strncmp(text, kByteOrderMark.data(), kByteOrderMark.size()) == 0;
  const std::size_t start = marked ? kByteOrderMark.size() : 0;
  rapidjson::InsituStringStream stream(text + start);
  // Iterative, for texts may be nested as deep as they like. Numbers are converted here, for
  // RapidJSON's own exact conversion reads out of bounds.
  constexpr unsigned kFlags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag |
                              rapidjson::kParseNumbersAsStringsFlag;
  JsonAllocator allocator;
  rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator> reader(&allocator);
  LevelsHandler handler(count, findings);
  const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, handler);
  if (result.IsError()) {
    findings.error = ToMessage(result);
    findings.error_offset = start + result.Offset();
    return LoadedLevels(count);
  }
  return handler.Take();
}

}  // namespace vemora::prefs
