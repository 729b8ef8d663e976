#include "FileCheck.h"

#include <rapidjson/reader.h>

#include <algorithm>
#include <filesystem>

#include "Failure.h"
#include "Levels.h"
#include "PreferenceFile.h"
#include "prefs/JsonCommon.h"

namespace vemora::tool {
namespace {

/// Ends the parse at the first name.
struct FirstName : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, FirstName> {
  bool Default() { return false; }
  bool StartObject() { return true; }
  bool Key(const char* text, rapidjson::SizeType length, bool /*copy*/) {
    name.assign(text, length);
    return false;
  }

  std::string name;
};

/// The name of the first member of the root, or nothing.
std::string FirstMember(const std::string& text) {
  FirstName first;
  const bool is_marked = text.compare(0, 3, "\xEF\xBB\xBF") == 0;
  rapidjson::StringStream stream(text.c_str() + (is_marked ? 3 : 0));
  rapidjson::Reader().Parse<rapidjson::kParseIterativeFlag>(stream, first);
  return first.name;
}

}  // namespace

prefs::FileLoadResult LoadResultOf(const std::string& path, FileKind kind) {
  const vemora_ustring file = vemora_ustring::FromUtf8(path);
  prefs::JsonCommon store;
  store.SetSavePrefsFlag(false, false);
  const bool is_private = kind == FileKind::kPrivate;
  store.SetPaths(is_private ? file : vemora_ustring(), is_private ? vemora_ustring() : file);
  store.LoadPreferences();
  const prefs::LoadResult found = prefs::GetLastLoadResult();
  return is_private ? found.private_file : found.shared_file;
}

std::vector<Finding> CheckFile(const std::string& path, FileKind kind) {
  const std::string text = ReadFile(path);
  RequireKind(path, text, kind);
  std::vector<Finding> findings = CheckText(text, kind);
  const bool is_told = std::any_of(findings.begin(), findings.end(),
                                   [](const Finding& finding) { return finding.IsMalformed(); });
  const prefs::FileLoadResult loaded = LoadResultOf(path, kind);
  if (loaded.result != prefs::ELoadResult::kMalformed || is_told) {
    return findings;
  }
  for (Finding& finding : findings) {
    if (finding.rule == Rule::kNoObject && finding.category.empty()) {
      finding.rule = Rule::kMalformed;  // there is no share level at all
      return findings;
    }
  }
  findings.erase(
      std::remove_if(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.rule == Rule::kMissingLevel; }),
      findings.end());
  findings.push_back(
      {Rule::kMalformed,
       "",
       "",
       "",
       {std::max<std::size_t>(loaded.line, 1), std::max<std::size_t>(loaded.column, 1)},
       loaded.message});
  return findings;
}

void RequireTwoFiles(const std::string& privateFile, const std::string& sharedFile) {
  namespace fs = std::filesystem;
  if (privateFile.empty() || sharedFile.empty()) {
    return;
  }
  std::error_code missing;
  const fs::path first = fs::u8path(privateFile);
  const fs::path second = fs::u8path(sharedFile);
  const auto spelling = [](const fs::path& path) {
    std::error_code ignored;
    return vemora_ustring::FromUtf8(fs::weakly_canonical(path, ignored).u8string());
  };
  if (fs::equivalent(first, second, missing) ||
      spelling(first).CompareNoCase(spelling(second)) == 0) {
    throw Failure(kUsage, "--private and --shared name one file, " + privateFile +
                              "; give the private file and the shared file");
  }
}

void RequireKind(const std::string& path, const std::string& text, FileKind kind) {
  const EShareLevel first_of_other =
      kind == FileKind::kPrivate ? prefs::kSharedForAllComputers : prefs::kThisComputerOnly;
  if (FirstMember(text) == LevelName(first_of_other)) {
    throw Failure(kUsage, kind == FileKind::kPrivate
                              ? path + " is a shared file; name it with --shared"
                              : path + " is a private file; name it with --private");
  }
}

}  // namespace vemora::tool
