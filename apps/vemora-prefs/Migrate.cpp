// vemora-prefs migrate

#include <map>
#include <set>

#include "Console.h"
#include "FileStore.h"
#include "Json.h"
#include "Levels.h"
#include "RegistryStore.h"
#include "StoreOptions.h"
#include "Table.h"
#include "TypesFile.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct MigrateOptions : VerbOptions {
  StoreOptions store;
  EShareLevel level = prefs::kNoShareLevel;
  std::string to;
  std::string types;
  std::string types_template;
  bool overwrite = false;
  bool dry_run = false;
};

constexpr char kToFiles[] = "files";
constexpr char kToRegistry[] = "registry";

std::unique_ptr<Store> Open(const StoreOptions& options, const std::string& kind, Access access) {
  StoreOptions one = options;
  one.profile.clear();
  if (kind == kToFiles) {
    one.registry.clear();
  }
  return OpenStore(one, access);
}

/// What the registry holds, with types and levels, as files hold it.
std::vector<Entry> ReadForFiles(const Store& registry, const MigrateOptions& options,
                                std::vector<Problem>& problems) {
  const Types types = options.types.empty() ? Types() : ReadTypes(options.types);
  const EShareLevel other =
      options.level == prefs::kNoShareLevel ? prefs::kThisComputerOnly : options.level;
  Classifier classifier;
  std::vector<Entry> entries = registry.Read();
  for (Entry& entry : entries) {
    ApplyType(types, entry, problems);
    entry.level = classifier.Find(entry.category, entry.key).value_or(other);
  }
  return entries;
}

/// Leaves out what the store refuses.
std::vector<Entry> Acceptable(const std::vector<Entry>& entries, const Store& store,
                              std::vector<Problem>& problems) {
  std::vector<Entry> accepted;
  for (const Entry& entry : entries) {
    if (const std::optional<std::string> reason = store.Refuses(entry.value)) {
      problems.push_back({NameOf(entry.category, entry.key), "is left out: " + *reason});
    } else {
      accepted.push_back(entry);
    }
  }
  return accepted;
}

/// Leaves out what the target has with another value, unless that is to be overwritten.
std::vector<Entry> WithoutConflicts(const std::vector<Entry>& entries, const Store& target,
                                    std::vector<Problem>& problems) {
  std::set<Entry, EntryLess> there;
  for (const Entry& entry : target.Read()) {
    there.insert(entry);
  }
  std::vector<Entry> kept;
  for (const Entry& entry : entries) {
    const Entry stored = target.HasLevels() ? entry
                                            : Entry{prefs::kThisComputerOnly, entry.category,
                                                    entry.key, AsInRegistry(entry.value)};
    const auto old = there.find(stored);
    if (old == there.end() || old->value == stored.value) {
      kept.push_back(entry);
    } else {
      problems.push_back({NameOf(entry.category, entry.key),
                          "stays " + TypeName(old->value) + ' ' + ToQuotedText(old->value) +
                              " in the target, where it would be " + TypeName(stored.value) + ' ' +
                              ToQuotedText(stored.value) + "; --overwrite replaces it"});
    }
  }
  return kept;
}

void WriteAll(const std::vector<Entry>& entries, Store& store, std::vector<Problem>& problems) {
  Progress progress("writing", entries.size());
  for (const Entry& entry : entries) {
    try {
      store.Write(entry);
    } catch (const Failure& failure) {
      problems.push_back({NameOf(entry.category, entry.key), failure.what()});
    }
    progress.Step();
  }
  store.Save();
}

/// Reads all back and tells what is not there as it was.
void Verify(const std::vector<Entry>& entries, const Store& store, std::vector<Problem>& problems) {
  std::set<Entry, EntryLess> found;
  for (const Entry& entry : store.Read()) {
    found.insert(entry);
  }
  for (Entry entry : entries) {
    const Value wanted = entry.value;
    if (!store.HasLevels()) {
      entry.level = prefs::kThisComputerOnly;
      entry.value = AsInRegistry(wanted);
    }
    const auto read = found.find(entry);
    if (read == found.end() || read->value != entry.value) {
      problems.push_back({NameOf(entry.category, entry.key), "does not read back as it was"});
    } else if (std::holds_alternative<double>(wanted) && wanted != entry.value &&
               wanted != ParseValue("double", ToText(entry.value))) {
      problems.push_back({NameOf(entry.category, entry.key),
                          "is rounded from " + ToText(wanted) + " to " + ToText(entry.value)});
    }
  }
}

using Summary = std::map<std::pair<EShareLevel, std::string>, int>;

void PrintSummary(const Summary& summary, const std::vector<Problem>& problems,
                  const std::string& outcome) {
  std::vector<std::vector<std::string>> rows = {{"LEVEL", "TYPE", "PREFERENCES"}};
  for (const auto& [kind, count] : summary) {
    rows.push_back({LevelName(kind.first), kind.second, std::to_string(count)});
  }
  std::string text = FormatTable(rows) + outcome + '\n';
  for (const Problem& problem : problems) {
    text += problem.name + ' ' + problem.reason + '\n';
  }
  Print(text);
}

void PrintJson(const Summary& summary, const std::vector<Problem>& problems, bool dryRun) {
  Print(MakeJson([&](JsonWriter& writer) {
    writer.StartObject();
    writer.Key("dry_run");
    writer.Bool(dryRun);
    writer.Key("summary");
    writer.StartArray();
    for (const auto& [kind, count] : summary) {
      writer.StartObject();
      WriteMember(writer, "level", LevelName(kind.first));
      WriteMember(writer, "type", kind.second);
      writer.Key("preferences");
      writer.Int(count);
      writer.EndObject();
    }
    writer.EndArray();
    writer.Key("problems");
    writer.StartArray();
    for (const Problem& problem : problems) {
      writer.StartObject();
      WriteMember(writer, "preference", problem.name);
      WriteMember(writer, "reason", problem.reason);
      writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
  }));
}

void RequireOptions(const MigrateOptions& options) {
  if (options.store.private_file.empty() || options.store.shared_file.empty() ||
      options.store.registry.empty()) {
    throw Failure(kUsage, "migrate wants both stores; give --registry, --private and --shared");
  }
  if (options.to == kToRegistry && !(options.types.empty() && options.types_template.empty() &&
                                     options.level == prefs::kNoShareLevel)) {
    throw Failure(kUsage,
                  "the registry has no types and levels to choose; leave out --types and --level");
  }
}

ExitCode Migrate(const MigrateOptions& named) {
  MigrateOptions options = named;
  options.store = Resolved(named.store);
  RequireOptions(options);
  const bool to_files = options.to == kToFiles;
  const auto source = Open(options.store, to_files ? kToRegistry : kToFiles, Access::kRead);
  if (!options.types_template.empty()) {
    WriteFile(options.types_template, MakeTypesTemplate(source->Read()));
    return kOk;
  }
  const auto target = Open(options.store, options.to, Access::kMake);
  std::vector<Problem> problems;
  std::vector<Entry> entries = Acceptable(
      to_files ? ReadForFiles(*source, options, problems) : WithoutLevels(source->Read(), problems),
      *target, problems);
  if (!options.overwrite) {
    entries = WithoutConflicts(entries, *target, problems);
  }
  Summary summary;
  for (const Entry& entry : entries) {
    ++summary[{entry.level, TypeName(entry.value)}];
  }
  if (!options.dry_run) {
    WriteAll(entries, *target, problems);
    Verify(entries, *Open(options.store, options.to, Access::kMake), problems);
  }
  if (options.json) {
    PrintJson(summary, problems, options.dry_run);
  } else {
    const std::string count = std::to_string(entries.size());
    PrintSummary(
        summary, problems,
        options.dry_run ? "would write " + count : "wrote " + count + " and read them back");
  }
  return problems.empty() ? kOk : kDifferent;
}

}  // namespace

void AddMigrate(CLI::App& program, ExitCode& result) {
  MigrateOptions& options = AddVerb<MigrateOptions>(
      program, result, "migrate",
      "Writes the preferences of a registry key to files, or back, and reads them back",
      "--to files --registry Software\\Vendor\\App --private private.json --shared shared.json "
      "--types types.json",
      Migrate);
  AddFileOptions(*options.verb, options.store);
  AddRegistryOption(*options.verb, options.store);
  AddProfileOption(*options.verb, options.store);
  AddChangeOptions(*options.verb, options.store);
  options.store.rules.backup = true;
  AddDefaultLevelOption(*options.verb, options.level);
  AddJsonOption(options);
  options.verb->add_option("--to", options.to, "files or registry")
      ->required()
      ->check(CLI::IsMember({kToFiles, kToRegistry}))
      ->type_name("STORE");
  options.verb
      ->add_option("--types", options.types,
                   R"(JSON that tells which numbers are bools and which texts are doubles, such )"
                   R"(as {"Category": {"Key": "bool"}})")
      ->type_name("FILE");
  options.verb
      ->add_option("--types-template", options.types_template,
                   "Write a file for --types, with the types that the registry tells, and no more")
      ->type_name("FILE");
  options.verb->add_flag("--overwrite", options.overwrite,
                         "Replace values of the target that differ");
  options.verb->add_flag("--dry-run", options.dry_run, "Change nothing, only tell");
}

}  // namespace vemora::tool
