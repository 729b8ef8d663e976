// vemora-prefs check

#include "Console.h"
#include "FileCheck.h"
#include "Json.h"

#include "StoreOptions.h"
#include "Verbs.h"
#include "prefs/SaveMode.h"

namespace vemora::tool {
namespace {

struct CheckOptions : VerbOptions {
  StoreOptions store;
};

struct FileFinding {
  std::string file;
  Finding finding;
};

void CollectFrom(const std::string& file, FileKind kind, std::vector<FileFinding>& findings) {
  if (file.empty()) {
    return;
  }
  for (Finding& finding : CheckFile(file, kind)) {
    findings.push_back({file, std::move(finding)});
  }
}

std::string ToJson(const std::vector<FileFinding>& findings) {
  return MakeJson([&findings](JsonWriter& writer) {
    writer.StartArray();
    for (const auto& [file, finding] : findings) {
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
    }
    writer.EndArray();
  });
}

std::string PaintedLine(const std::string& file, const Finding& finding) {
  return Painted(finding.IsMalformed() ? Colour::kRed : Colour::kYellow, ToText(file, finding)) +
         '\n';
}

ExitCode Check(const CheckOptions& options) {
  const StoreOptions store = Resolved(options.store);
  if (store.private_file.empty() && store.shared_file.empty()) {
    throw Failure(kUsage, "no file was named; give --private FILE, --shared FILE or both");
  }
  RequireTwoFiles(store.private_file, store.shared_file);
  SetSaveMode(prefs::ESaveMode::kProtected);  // waits while a host replaces a file
  std::vector<FileFinding> findings;
  CollectFrom(store.private_file, FileKind::kPrivate, findings);
  CollectFrom(store.shared_file, FileKind::kShared, findings);
  ExitCode result = kOk;
  std::string lines;
  for (const auto& [file, finding] : findings) {
    lines += options.json ? "" : PaintedLine(file, finding);
    result = finding.IsMalformed() || result == kUnusable ? kUnusable : kDifferent;
  }
  Print(options.json ? ToJson(findings) : lines);
  return result;
}

}  // namespace

void AddCheck(CLI::App& program, ExitCode& result) {
  CheckOptions& options = AddVerb<CheckOptions>(
      program, result, "check",
      "Tells what a load would skip, put elsewhere or mix up, and what should not travel",
      "--private private.json --shared shared.json", Check);
  AddFileOptions(*options.verb, options.store);
  AddProfileOption(*options.verb, options.store);
  AddJsonOption(options);
}

}  // namespace vemora::tool
