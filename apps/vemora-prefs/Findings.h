/// @file
/// What `check` finds.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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

constexpr std::size_t kRuleCount = static_cast<std::size_t>(Rule::kIllFormedText) + 1;

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

/// What was found, in the order of the text.
class Findings {
 public:
  /// @param limit how many findings of a rule are listed; others are counted only
  explicit Findings(std::size_t limit) : limit_(limit) {}

  bool IsListed(Rule rule) const { return CountOf(rule) < limit_; }
  void Count(Rule rule) { ++counts_[static_cast<std::size_t>(rule)]; }
  void Add(Finding finding);
  void RemoveAll(Rule rule);

  std::size_t CountOf(Rule rule) const { return counts_[static_cast<std::size_t>(rule)]; }
  std::size_t CountHidden() const;
  bool IsMalformed() const { return CountOf(Rule::kMalformed) + CountOf(Rule::kUtf16) != 0; }

  std::vector<Finding> list;

 private:
  std::size_t limit_;
  std::array<std::size_t, kRuleCount> counts_{};
};

/// "FILE:LINE:COLUMN: text", in one line
std::string ToText(const std::string& file, const Finding& finding);

}  // namespace vemora::tool
