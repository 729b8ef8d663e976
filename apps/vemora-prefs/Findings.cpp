#include "Findings.h"

#include <array>
#include <cstddef>

#include "Escape.h"

namespace vemora::tool {

const RuleInfo& InfoOf(Rule rule) {
  constexpr std::string_view kError = "error";
  constexpr std::string_view kWarning = "warning";
  constexpr std::string_view kNote = "note";
  static constexpr std::array<RuleInfo, 11> kRules = {{{"malformed", kError, true},
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

std::string ToText(const std::string& file, const Finding& finding) {
  return Escaped(file) + ':' + std::to_string(finding.position.line) + ':' +
         std::to_string(finding.position.column) + ": " + Escaped(finding.text);
}

}  // namespace vemora::tool
