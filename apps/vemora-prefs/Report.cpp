// vemora-prefs report

#include "Escape.h"
#include "FileCheck.h"
#include "Levels.h"
#include "ReportPage.h"
#include "StoreOptions.h"
#include "TextFile.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct ReportOptions : VerbOptions {
  StoreOptions store;
  std::string file;
};

/// The level where a host looks for it that sets no other one, and why it lies where it does.
ReportedEntry Explain(const Entry& entry, bool hasLevels, Classifier& classifier) {
  if (!hasLevels) {
    return {entry, LevelName(entry.level), "none: the registry has no share levels"};
  }
  const std::optional<EShareLevel> known = classifier.Find(entry.category, entry.key);
  const EShareLevel level = known.value_or(prefs::kThisComputerOnly);
  const bool is_there = level == entry.level;
  const char* const rule = known.has_value() && is_there ? "table row"
                           : known.has_value() ? "none: a host looks at the default level only"
                           : is_there          ? "default"
                                               : "guard: the host chose the level";
  return {entry, LevelName(level), rule};
}

void CheckInto(Report& report, const std::string& path, FileKind kind) {
  constexpr std::size_t kListed = 1000;  // of each rule
  if (path.empty()) {
    return;
  }
  const Findings findings = CheckFile(path, kind, kListed);
  for (const Finding& finding : findings.list) {
    report.findings.push_back(ToText(path, finding));
  }
  if (findings.CountHidden() != 0) {
    report.findings.push_back(std::to_string(findings.CountHidden()) + " more in " + Escaped(path));
  }
}

ExitCode MakeReport(const ReportOptions& options) {
  const StoreOptions named = Resolved(options.store);
  const std::unique_ptr<Store> store = OpenStore(named, Access::kRead);
  Report report;
  for (const std::string& place : {named.private_file, named.shared_file, named.registry}) {
    report.place += place.empty() ? "" : (report.place.empty() ? "" : ", ") + Escaped(place);
  }
  Classifier classifier;
  for (const Entry& entry : store->Read()) {
    report.entries.push_back(Explain(entry, store->HasLevels(), classifier));
  }
  CheckInto(report, named.private_file, FileKind::kPrivate);
  CheckInto(report, named.shared_file, FileKind::kShared);
  WriteFile(options.file, MakeReportPage(report));
  return kOk;
}

}  // namespace

void AddReport(CLI::App& program, ExitCode& result) {
  ReportOptions& options = AddVerb<ReportOptions>(
      program, result, "report",
      "Writes a page for a browser: all preferences, why they lie where they do, and findings",
      "--private private.json --shared shared.json report.html", MakeReport);
  AddStoreOptions(*options.verb, options.store);
  options.verb->add_option("FILE", options.file, "The new page, or - for standard output")
      ->required();
}

}  // namespace vemora::tool
