/// @file
/// What `check` finds.
#pragma once

#include <string>
#include <string_view>

#include "TextFile.h"

namespace vemora::tool {

/// What a finding is about. `kRules` describes each.
enum class Rule {
  kMalformed,
  kUtf16,
  kEmpty,
  kNoObject,
  kNoPreference,
  kDuplicate,
  kMisplacedMember,
  kMissingLevel,
  kOtherLevel,
  kLocalPath,
  kIllFormedText
};

struct RuleInfo {
  const char* name;
  std::string_view severity;  // error: the whole file counts as empty
  bool loses;                 // saving the file anew loses something
};

const RuleInfo& InfoOf(Rule rule);

struct Finding {
  Rule rule;
  std::string level;  // of what it is about, empty where that is none
  std::string category;
  std::string key;
  Position position;
  std::string text;

  bool IsMalformed() const { return InfoOf(rule).severity == InfoOf(Rule::kMalformed).severity; }
};

/// "FILE:LINE:COLUMN: text", in one line
std::string ToText(const std::string& file, const Finding& finding);

}  // namespace vemora::tool
