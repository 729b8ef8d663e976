// vemora-prefs explain

#include "Console.h"
#include "Json.h"
#include "Levels.h"
#include "PairOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

/// What gives a preference its level.
std::string RuleFor(const Store& store, const PairOptions& options) {
  if (!store.HasLevels()) {
    return "none: the registry has no share levels";
  }
  if (Classifier().Find(options.category, options.key).has_value()) {
    return "table row: the library knows this preference";
  }
  return options.level == prefs::kNoShareLevel
             ? "default: the library does not know this preference"
             : "guard: --level, as a host's ShareLevelOverride";
}

/// The other levels that hold a preference of these names, where no host finds it by this rule.
std::vector<std::string> OtherLevels(const Store& store, const PairOptions& options,
                                     EShareLevel level) {
  std::vector<std::string> levels;
  for (const Entry& entry : store.Read()) {
    if (entry.level != level && entry.category.CompareNoCase(options.category) == 0 &&
        entry.key.CompareNoCase(options.key) == 0) {
      levels.push_back(LevelName(entry.level));
    }
  }
  return levels;
}

ExitCode Explain(const PairOptions& typed) {
  const std::unique_ptr<Store> store = OpenStore(typed.store, Access::kRead);
  const PairOptions options = Pasted(*store, typed);
  const EShareLevel level = store->LevelOf(options.level, options.category, options.key);
  const std::string place = store->Place(level);
  const std::string rule = RuleFor(*store, options);
  const std::optional<Entry> entry = store->Find(options.level, options.category, options.key);
  const std::vector<std::string> others = OtherLevels(*store, options, level);
  const ExitCode result = entry.has_value() ? kOk : kDifferent;
  if (options.json) {
    Print(MakeJson([&](JsonWriter& writer) {
      writer.StartObject();
      WriteMember(writer, "back_end", store->BackEnd());
      WriteMember(writer, "place", place);
      WriteMember(writer, "level", LevelName(level));
      WriteMember(writer, "rule", rule);
      writer.Key("set");
      writer.Bool(entry.has_value());
      if (entry.has_value()) {
        WriteTypeAndValue(writer, entry->value);
      }
      writer.Key("other_levels");
      writer.StartArray();
      for (const std::string& other : others) {
        WriteText(writer, other);
      }
      writer.EndArray();
      writer.EndObject();
    }));
    return result;
  }
  std::vector<std::vector<std::string>> rows = {
      {"back end", store->BackEnd()},
      {"place", place},
      {"level", LevelName(level)},
      {"rule", rule},
      {"value",
       entry.has_value() ? TypeName(entry->value) + ' ' + ToQuotedText(entry->value) : "not set"}};
  for (const std::string& other : others) {
    rows.push_back({"also at", other});
  }
  PrintTable(rows);
  return result;
}

}  // namespace

void AddExplain(CLI::App& program, ExitCode& result) {
  PairOptions& options = AddVerb<PairOptions>(
      program, result, "explain",
      "Tells where a host looks for a preference, why, and what is there",
      "--private private.json --shared shared.json Preferences AutoSaveFreq", Explain);
  AddPairOptions(options);
  AddJsonOption(options);
}

}  // namespace vemora::tool
