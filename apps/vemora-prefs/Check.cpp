// vemora-prefs check

#include "Console.h"
#include "Json.h"
#include "PreferenceFile.h"
#include "StoreOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct CheckOptions : VerbOptions {
  StoreOptions store;
};

struct FileFinding {
  std::string file;
  Finding finding;
};

void CheckFile(const std::string& file, FileKind kind, std::vector<FileFinding>& findings) {
  if (file.empty()) {
    return;
  }
  for (const Finding& finding : CheckText(ReadFile(file), kind)) {
    findings.push_back({file, finding});
  }
}

std::string ToJson(const std::vector<FileFinding>& findings) {
  return MakeJson([&findings](JsonWriter& writer) {
    writer.StartArray();
    for (const auto& [file, finding] : findings) {
      writer.StartObject();
      WriteMember(writer, "file", file);
      writer.Key("line");
      writer.Uint64(finding.line);
      writer.Key("column");
      writer.Uint64(finding.column);
      writer.Key("malformed");
      writer.Bool(finding.malformed);
      WriteMember(writer, "text", finding.text);
      writer.EndObject();
    }
    writer.EndArray();
  });
}

ExitCode Check(const CheckOptions& options) {
  if (options.store.private_file.empty() && options.store.shared_file.empty()) {
    throw Failure(kUsage, "no file was named; give --private FILE, --shared FILE or both");
  }
  std::vector<FileFinding> findings;
  CheckFile(options.store.private_file, FileKind::kPrivate, findings);
  CheckFile(options.store.shared_file, FileKind::kShared, findings);
  ExitCode result = kOk;
  std::string lines;
  for (const auto& [file, finding] : findings) {
    lines += file + ':' + ToText(finding) + '\n';
    result = finding.malformed || result == kUnusable ? kUnusable : kDifferent;
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
  AddJsonOption(options);
}

}  // namespace vemora::tool
