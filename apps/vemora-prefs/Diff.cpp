// vemora-prefs diff

#include "Console.h"
#include "Difference.h"
#include "Json.h"
#include "Levels.h"
#include "RegistryStore.h"
#include "StoreOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct DiffOptions : VerbOptions {
  StoreOptions first;
  StoreOptions second;
};

/// The preferences as a registry would hold them: all at one level.
std::vector<Entry> Flatten(const std::vector<Entry>& entries) {
  std::vector<Problem> left_out;
  std::vector<Entry> result = WithoutLevels(entries, left_out);
  for (Entry& entry : result) {
    entry.level = prefs::kThisComputerOnly;
    entry.value = AsInRegistry(entry.value);
  }
  return result;
}

void WriteSide(JsonWriter& writer, const char* name, const std::optional<Entry>& entry) {
  writer.Key(name);
  if (entry.has_value()) {
    WriteEntry(writer, *entry);
  } else {
    writer.Null();
  }
}

std::string ToJson(const std::vector<Difference>& differences) {
  return MakeJson([&differences](JsonWriter& writer) {
    writer.StartArray();
    for (const Difference& difference : differences) {
      writer.StartObject();
      WriteSide(writer, "first", difference.first);
      WriteSide(writer, "second", difference.second);
      writer.EndObject();
    }
    writer.EndArray();
  });
}

ExitCode Diff(const DiffOptions& options) {
  const std::unique_ptr<Store> first = OpenStore(options.first, Access::kRead);
  const std::unique_ptr<Store> second = OpenStore(options.second, Access::kRead);
  const bool levels = first->HasLevels() && second->HasLevels();
  const auto read = [levels](const Store& store) {
    return levels || !store.HasLevels() ? store.Read() : Flatten(store.Read());
  };
  const std::vector<Difference> differences = Compare(read(*first), read(*second));
  std::string lines;
  for (const Difference& difference : differences) {
    lines += ToLines(difference);
  }
  Print(options.json ? ToJson(differences) : lines);
  return differences.empty() ? kOk : kDifferent;
}

}  // namespace

void AddDiff(CLI::App& program, ExitCode& result) {
  DiffOptions& options = AddVerb<DiffOptions>(
      program, result, "diff",
      "Tells how two stores differ; next to a registry, files are taken as it would hold them",
      "--private private.json --with-registry Software\\Vendor\\App", Diff);
  AddStoreOptions(*options.verb, options.first);
  AddStoreOptions(*options.verb, options.second, "with-");
  AddJsonOption(options);
}

}  // namespace vemora::tool
