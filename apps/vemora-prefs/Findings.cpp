#include "Findings.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "Escape.h"

namespace vemora::tool {

const RuleInfo& InfoOf(Rule rule) {
  constexpr std::string_view kError = "error";
  constexpr std::string_view kWarning = "warning";
  constexpr std::string_view kNote = "note";
  static constexpr std::array<RuleInfo, kRuleCount> kRules = {
      {{"malformed", kError, true},
       {"utf-16", kError, true},
       {"empty", kNote, false},
       {"no-object", kWarning, true},
       {"no-preference", kWarning, true},
       {"duplicate", kWarning, true},
       {"misplaced-member", kWarning, true},
       {"missing-level", kNote, false},
       {"other-level", kWarning, false},
       {"local-path", kNote, false},
       {"ill-formed-text", kWarning, true}}};
  return kRules[static_cast<std::size_t>(rule)];
}

void Findings::Add(Finding finding) {
  Count(finding.rule);
  list.push_back(std::move(finding));
}

void Findings::RemoveAll(Rule rule) {
  list.erase(std::remove_if(list.begin(), list.end(),
                            [rule](const Finding& finding) { return finding.rule == rule; }),
             list.end());
  counts_[static_cast<std::size_t>(rule)] = 0;
}

std::size_t Findings::CountHidden() const {
  return std::accumulate(counts_.begin(), counts_.end(), std::size_t{0}) - list.size();
}

std::string ToText(const std::string& file, const Finding& finding) {
  return Escaped(file) + ':' + std::to_string(finding.position.line) + ':' +
         std::to_string(finding.position.column) + ": " + Escaped(finding.text);
}

}  // namespace vemora::tool
