// vemora-prefs check

#include "Console.h"
#include "Escape.h"
#include "FileCheck.h"
#include "Json.h"

#include "StoreOptions.h"
#include "Verbs.h"
#include "prefs/SaveMode.h"

namespace vemora::tool {
namespace {

constexpr std::size_t kListed = 10'000;  // of each rule

struct CheckOptions : VerbOptions {
  StoreOptions store;
  bool all = false;
};

/// A file, if it was named, and what was found in it.
struct CheckedFile {
  std::string path;
  Findings findings;
};

void Check(const std::string& path, FileKind kind, std::size_t limit,
           std::vector<CheckedFile>& files) {
  if (!path.empty()) {
    files.push_back({path, CheckFile(path, kind, limit)});
  }
}

/// Calls `visit` with the path and each finding.
template <typename Visit>
void ForEachFinding(const std::vector<CheckedFile>& files, const Visit& visit) {
  for (const CheckedFile& file : files) {
    for (const Finding& finding : file.findings.list) {
      visit(file.path, finding);
    }
  }
}

std::string ToJson(const std::vector<CheckedFile>& files) {
  return MakeJson([&files](JsonWriter& writer) {
    writer.StartArray();
    ForEachFinding(files, [&writer](const std::string& file, const Finding& finding) {
      const RuleInfo& rule = InfoOf(finding.rule);
      writer.StartObject();
      WriteMember(writer, "file", file);
      writer.Key("line");
      writer.Uint64(finding.position.line);
      writer.Key("column");
      writer.Uint64(finding.position.column);
      WriteMember(writer, "rule", rule.name);
      WriteMember(writer, "severity", rule.severity);
      writer.Key("malformed");
      writer.Bool(finding.IsMalformed());
      WriteMember(writer, "level", finding.level);
      WriteMember(writer, "category", finding.category);
      WriteMember(writer, "key", finding.key);
      WriteMember(writer, "text", finding.text);
      writer.EndObject();
    });
    writer.EndArray();
  });
}

std::string PaintedLine(const std::string& file, const Finding& finding) {
  return Painted(finding.IsMalformed() ? Colour::kRed : Colour::kYellow, ToText(file, finding)) +
         '\n';
}

ExitCode RunCheck(const CheckOptions& options) {
  const StoreOptions store = Resolved(options.store);
  if (store.private_file.empty() && store.shared_file.empty()) {
    throw Failure(kUsage, "no file was named; give --private FILE, --shared FILE or both");
  }
  RequireTwoFiles(store.private_file, store.shared_file);
  SetSaveMode(prefs::ESaveMode::kProtected);  // waits while a host replaces a file
  const std::size_t limit = options.all ? static_cast<std::size_t>(-1) : kListed;
  std::vector<CheckedFile> files;
  Check(store.private_file, FileKind::kPrivate, limit, files);
  Check(store.shared_file, FileKind::kShared, limit, files);
  std::string lines;
  ForEachFinding(files, [&lines](const std::string& file, const Finding& finding) {
    lines += PaintedLine(file, finding);
  });
  Print(options.json ? ToJson(files) : lines);
  ExitCode result = kOk;
  for (const auto& [path, findings] : files) {
    if (findings.CountHidden() != 0) {
      PrintError("vemora-prefs: " + std::to_string(findings.CountHidden()) + " more findings in " +
                 Escaped(path) + " are not shown; --all shows them\n");
    }
    if (!findings.list.empty()) {
      result = findings.IsMalformed() || result == kUnusable ? kUnusable : kDifferent;
    }
  }
  return result;
}

}  // namespace

void AddCheck(CLI::App& program, ExitCode& result) {
  CheckOptions& options = AddVerb<CheckOptions>(
      program, result, "check",
      "Tells what a load would skip, put elsewhere or mix up, and what should not travel",
      "--private private.json --shared shared.json", RunCheck);
  AddFileOptions(*options.verb, options.store);
  AddProfileOption(*options.verb, options.store);
  AddJsonOption(options);
  options.verb->add_flag("--all", options.all,
                         "Show all findings, and not only the first 10,000 of a kind");
}

}  // namespace vemora::tool
