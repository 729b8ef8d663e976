#include "PreferenceFile.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <unordered_set>

#include "Escape.h"
#include "Failure.h"
#include "Levels.h"

namespace vemora::tool {
namespace {

/// Names that are equal but for case have one hash. Letters that a locale may fold to others, and
/// those beyond ASCII, all count as one.
struct NoCaseHash {
  std::size_t operator()(const vemora_ustring& name) const {
    std::size_t hash = name.size();
    for (const auto unit : name) {
      const bool is_letter = unit < 0x80 && std::isalpha(static_cast<int>(unit)) != 0;
      const auto upper = static_cast<std::size_t>(is_letter ? unit & ~0x20 : unit);
      const bool may_fold = unit >= 0x80 || upper == 'I' || upper == 'K' || upper == 'S';
      hash = (hash ^ (may_fold ? 0x80 : upper)) * 0x100'0000'01B3;
    }
    return hash;
  }
};

struct NoCaseEqual {
  bool operator()(const vemora_ustring& left, const vemora_ustring& right) const {
    return left.CompareNoCase(right) == 0;
  }
};

using Names = std::unordered_set<vemora_ustring, NoCaseHash, NoCaseEqual>;

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char unit) { return static_cast<unsigned char>(unit) < 0x80; });
}

/// The code unit of an escape such as \uD800 at `text`, or 0 when there is none.
unsigned EscapedUnit(std::string_view text) {
  unsigned unit = 0;
  if (text.size() < 6 || text.substr(0, 2) != "\\u" ||
      std::from_chars(text.data() + 2, text.data() + 6, unit, 16).ptr != text.data() + 6) {
    return 0;
  }
  return unit;
}

/// The library takes escaped halves of surrogate pairs, the parser refuses them. Replaced by as
/// many bytes, they leave all else at its place.
std::string WithoutLoneSurrogates(std::string text) {
  const auto is_within = [](unsigned unit, unsigned first) {
    return unit >= first && unit < first + 0x400;
  };
  for (std::size_t at = text.find('\\'); at != std::string::npos && at + 1 < text.size();
       at = text.find('\\', at)) {
    const std::string_view rest = std::string_view(text).substr(at);
    const unsigned unit = EscapedUnit(rest);
    if (is_within(unit, 0xD800) && is_within(EscapedUnit(rest.substr(6)), 0xDC00)) {
      at += 12;
    } else if (is_within(unit, 0xD800) || is_within(unit, 0xDC00)) {
      text.replace(at, 6, "\\uFFFD");
      at += 6;
    } else {
      at += 2;
    }
  }
  return text;
}

/// Whether a text starts like a path: a drive, a share, or a file's address.
bool LooksLikePath(std::string_view text) {
  const bool drive = text.size() >= 3 && std::isalpha(static_cast<unsigned char>(text[0])) != 0 &&
                     text[1] == ':' && (text[2] == '\\' || text[2] == '/');
  return drive || text.substr(0, 2) == "\\\\" || text.substr(0, 5) == "file:";
}

bool IsTooLarge(const std::string& number) {
  return std::isinf(std::strtod(number.c_str(), nullptr));
}

/// A whole number, which is no double, outside the range of an int.
bool IsNoInt(const std::string& number) {
  int value = 0;
  return number.find_first_of(".eE") == std::string::npos &&
         std::from_chars(number.data(), number.data() + number.size(), value).ec != std::errc();
}

/// What the parser calls while it reads. It looks into objects three deep: the root, its levels,
/// their categories.
class Checker : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Checker> {
 public:
  Checker(const std::string& text, const rapidjson::StringStream& stream, FileKind kind,
          std::size_t limit)
      : lines_(text),
        stream_(stream),
        kind_(kind),
        first_level_(kind == FileKind::kPrivate ? prefs::kThisComputerOnly
                                                : prefs::kSharedForAllComputers),
        last_level_(kind == FileKind::kPrivate ? prefs::kThisComputerOnly : prefs::kAndroidOnly),
        findings_(limit) {}

  Findings Take() { return std::move(findings_); }

  /// Behind the end of the text.
  void CheckLevelCount() {
    const std::size_t next = root_is_object_ ? first_level_ + members_of_root_ : kNoLevel;
    for (std::size_t level = next; level <= last_level_; ++level) {
      Report(Rule::kMissingLevel, "there is no member for \"" + NameOfLevel(level) +
                                      "\", which a load leaves as it was");
      findings_.list.back().level = NameOfLevel(level);
    }
  }

  void ReportMalformed(std::size_t offset, const std::string& what) {
    ReportAt(Rule::kMalformed, offset, what);
  }

  bool Null() { return Skipped("is null"); }
  bool Bool(bool /*value*/) { return Scalar(); }

  bool String(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    if (IsRead() && depth_ == kCategory && kind_ == FileKind::kShared &&
        LooksLikePath({text, length})) {
      ReportKey(Rule::kLocalPath, "looks like a path of this computer, which should not travel");
    }
    CheckEncoding({text, length});
    return Scalar();
  }

  bool RawNumber(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    const std::string number(text, length);
    if (IsTooLarge(number)) {
      ReportMalformed(stream_.Tell(), "the number is too large for a double");
      return false;
    }
    return IsNoInt(number) ? Skipped("is a whole number that an int cannot hold") : Scalar();
  }

  bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    if (!IsRead()) {
      return true;
    }
    CheckEncoding({text, length});
    const vemora_ustring name = vemora_ustring::FromUtf8({text, length});
    key_offset_ = stream_.Tell();
    switch (depth_) {
      case kRoot:
        StartMember(name);
        break;
      case kLevel:
        category_ = name;
        key_.clear();
        CheckCollision(categories_, name, "a load keeps the last of these categories only");
        break;
      default:
        key_ = name;
        CheckCollision(keys_, name, "a load keeps the last of these values only");
        CheckLevel();
    }
    return true;
  }

  bool StartObject() {
    if (IsRead()) {
      if (depth_ == kCategory) {
        Skipped("is an object");
      } else {
        root_is_object_ = true;
        ++read_;
        (depth_ == kRoot ? categories_ : keys_).clear();
      }
    }
    ++depth_;
    return true;
  }

  bool StartArray() {
    Skipped("is an array");
    ++depth_;
    return true;
  }

  bool EndObject(rapidjson::SizeType /*members*/) { return End(); }
  bool EndArray(rapidjson::SizeType /*elements*/) { return End(); }

 private:
  // How many objects are open.
  static constexpr std::size_t kRoot = 1;
  static constexpr std::size_t kLevel = 2;
  static constexpr std::size_t kCategory = 3;

  static constexpr std::size_t kNoLevel = prefs::kShareLevelCount;

  static std::string NameOfLevel(std::size_t level) {
    return LevelName(static_cast<EShareLevel>(level));
  }

  std::size_t Level() const { return first_level_ + members_of_root_ - 1; }

  /// Whether a load looks at what comes now.
  bool IsRead() const { return depth_ == read_ && (depth_ <= kRoot || Level() <= last_level_); }

  void Report(Rule rule, const std::string& what) { ReportAt(rule, stream_.Tell(), what); }
  void ReportKey(Rule rule, std::string_view what, std::string_view more = "") {
    const bool is_listed = findings_.IsListed(rule);
    ReportAt(rule, key_offset_,
             is_listed ? NameOf(category_, key_).append(1, ' ').append(what).append(more) : "");
  }
  void ReportAt(Rule rule, std::size_t offset, const std::string& what) {
    if (!findings_.IsListed(rule)) {
      findings_.Count(rule);
      return;
    }
    const bool is_in_level =
        depth_ >= kLevel && members_of_root_ > 0 && Level() <= last_level_ && read_ >= kLevel;
    findings_.Add(
        {rule, is_in_level ? NameOfLevel(Level()) : "", is_in_level ? category_.ToUtf8() : "",
         is_in_level && depth_ >= kCategory ? key_.ToUtf8() : "", lines_.At(offset), what});
  }

  bool Skipped(std::string_view kind) {
    if (!IsRead()) {
      return true;
    }
    switch (depth_) {
      case 0:
        Report(Rule::kNoObject,
               "the root " + std::string(kind) + " and no object, so a load takes nothing");
        break;
      case kRoot:
        if (Level() <= last_level_) {  // a member behind the last one is reported already
          ReportAt(Rule::kNoObject, key_offset_,
                   "the level \"" + NameOfLevel(Level()) + "\" " + std::string(kind) +
                       " and no object, so a load leaves it as it was");
        }
        break;
      case kLevel:
        ReportAt(Rule::kNoObject, key_offset_,
                 "the category " + Quoted(category_.ToUtf8()) + ' ' + std::string(kind) +
                     " and no object, so a load skips it");
        break;
      default:
        ReportKey(Rule::kNoPreference, kind, ", which a load skips");
    }
    return true;
  }

  bool Scalar() { return depth_ == kCategory || Skipped("is a single value"); }

  bool End() {
    --depth_;
    read_ = std::min(read_, depth_);
    return true;
  }

  void StartMember(const vemora_ustring& name) {
    ++members_of_root_;
    if (Level() <= last_level_ && name == prefs::kShareLevelNames[Level()]) {
      return;
    }
    ReportAt(Rule::kMisplacedMember, key_offset_,
             "the member " + Quoted(name.ToUtf8()) +
                 (Level() > last_level_ ? " is one too many: no load takes it"
                                        : " stands at the place of \"" + NameOfLevel(Level()) +
                                              "\", as which it is loaded"));
  }

  void CheckCollision(Names& names, const vemora_ustring& name, const std::string& effect) {
    const auto [other, is_new] = names.insert(name);
    if (!is_new) {
      ReportAt(Rule::kDuplicate, key_offset_,
               "the name " + Quoted(name.ToUtf8()) + " is the same as " + Quoted(other->ToUtf8()) +
                   " above: " + effect);
    }
  }

  void CheckLevel() {
    const std::optional<EShareLevel> level = classifier_.Find(category_, key_);
    if (level.has_value() && *level != Level()) {
      ReportKey(Rule::kOtherLevel,
                "belongs to the level \"" + LevelName(*level) + "\", where alone it is looked for");
    }
  }

  void CheckEncoding(std::string_view text) {
    if (IsRead() && !IsAscii(text) && vemora_ustring::FromUtf8(text).ToUtf8() != text) {
      Report(Rule::kIllFormedText, "the text is not UTF-8; a load replaces what is ill-formed");
    }
  }

  Lines lines_;
  const rapidjson::StringStream& stream_;
  FileKind kind_;
  std::size_t first_level_;
  std::size_t last_level_;
  Classifier classifier_;
  Findings findings_;
  bool root_is_object_ = false;
  std::size_t members_of_root_ = 0;
  std::size_t depth_ = 0;  // objects and arrays that are open
  std::size_t read_ = 0;   // the outermost of them, which are read
  std::size_t key_offset_ = 0;
  Names categories_;
  Names keys_;
  vemora_ustring category_;
  vemora_ustring key_;
};

}  // namespace

Findings CheckText(const std::string& text, FileKind kind, std::size_t limit) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  constexpr Position kStart{1, 1};
  Findings whole(limit);
  if (text.empty()) {
    whole.Add({Rule::kEmpty, "", "", "", kStart, "the file is empty; a load takes nothing"});
    return whole;
  }
  if (IsUtf16(text)) {
    whole.Add({Rule::kUtf16, "", "", "", kStart, "the text is UTF-16; save it as UTF-8"});
    return whole;
  }
  // Blanks in its place leave all else where it is.
  std::string json = WithoutLoneSurrogates(text);
  if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    std::fill_n(json.begin(), kByteOrderMark.size(), ' ');
  }
  rapidjson::StringStream stream(json.c_str());
  Checker checker(text, stream, kind, limit);
  rapidjson::Reader reader;
  constexpr unsigned kFlags =
      rapidjson::kParseIterativeFlag | rapidjson::kParseNumbersAsStringsFlag;
  const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, checker);
  if (!result.IsError()) {
    checker.CheckLevelCount();
  } else if (result.Code() != rapidjson::kParseErrorTermination) {
    checker.ReportMalformed(result.Offset(), rapidjson::GetParseError_En(result.Code()));
  }
  return checker.Take();
}

}  // namespace vemora::tool
