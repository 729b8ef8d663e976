#include "FileCheck.h"

#include <rapidjson/reader.h>

#include <algorithm>
#include <filesystem>

#include "Failure.h"
#include "Levels.h"
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

bool IsSharedFile(const std::string& path) {
  return FileExists(path) &&
         FirstMember(ReadFile(path)) == LevelName(prefs::kSharedForAllComputers);
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

Findings CheckFile(const std::string& path, FileKind kind, std::size_t limit) {
  const std::string text = ReadFile(path);
  RequireKind(path, text, kind);
  Findings findings = CheckText(text, kind, limit);
  const prefs::FileLoadResult loaded = LoadResultOf(path, kind);
  if (loaded.result != prefs::ELoadResult::kMalformed || findings.IsMalformed()) {
    return findings;
  }
  // Among them texts that have no share level at all, which is told once.
  findings.RemoveAll(Rule::kMissingLevel);
  Finding malformed{
      Rule::kMalformed,
      "",
      "",
      "",
      {std::max<std::size_t>(loaded.line, 1), std::max<std::size_t>(loaded.column, 1)},
      loaded.message};
  if (findings.CountOf(Rule::kNoObject) != 0) {
    malformed.text = findings.list.front().text;
    malformed.position = findings.list.front().position;
    findings.RemoveAll(Rule::kNoObject);
  }
  findings.Add(malformed);
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

std::string SharedFileBeside(const std::string& privateFile) {
  namespace fs = std::filesystem;
  std::error_code unreadable;
  std::string found;
  const fs::path folder = fs::absolute(fs::u8path(privateFile)).parent_path();
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, unreadable)) {
    const std::string file = fs::path(entry.path()).replace_extension().u8string();
    if (entry.path().extension() != L".lock" || !IsSharedFile(file)) {
      continue;
    }
    if (!found.empty()) {
      throw Failure(kUsage, "several shared files lie beside " + privateFile +
                                "; name the one that belongs to it with --shared");
    }
    found = file;
  }
  return found;
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
