// vemora-prefs set

#include <rapidjson/document.h>

#include "Console.h"
#include "Json.h"
#include "PairOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct SetOptions : PairOptions {
  std::string type;
  std::string value;
};

/// A value as JSON has it: in quotes a text, a number or true and false; all else is a text, too.
Value Guess(const std::string& text) {
  rapidjson::Document json;
  json.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
  if (json.HasParseError()) {
    return ParseValue("string", text);
  }
  if (json.IsString()) {
    return ParseValue("string", {json.GetString(), json.GetStringLength()});
  }
  const char* const type = json.IsInt() ? "int" : json.IsDouble() ? "double" : "bool";
  return json.IsInt() || json.IsDouble() || json.IsBool() ? ParseValue(type, text)
                                                          : ParseValue("string", text);
}

std::string Describe(const Value& value) { return TypeName(value) + ' ' + ToQuotedText(value); }

/// The value as the one that is there has its type.
Value ParseAs(const Entry& old, const std::string& text) {
  const std::string type = TypeName(old.value);
  const bool is_quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  try {
    return is_quoted && type == "string" ? Guess(text) : ParseValue(type, text);
  } catch (const Failure& failure) {
    throw Failure(kUsage, NameOf(old.category, old.key) + " is " + Describe(old.value) + ", and " +
                              failure.what() + "; --type gives it another type");
  }
}

ExitCode Set(const SetOptions& typed) {
  const bool has_type = !typed.type.empty();
  std::optional<Value> value;
  if (has_type) {
    value = ParseValue(typed.type, typed.value);
  }
  const std::unique_ptr<Store> store = OpenStore(typed.store, Access::kMake);
  const SetOptions options = Pasted(*store, typed);
  const std::optional<Entry> old = store->Find(options.level, options.category, options.key);
  if (!has_type) {
    value = old.has_value() ? ParseAs(*old, options.value) : Guess(options.value);
  }
  if (const std::optional<std::string> reason = store->Refuses(*value)) {
    throw Failure(kUsage, *reason + "; choose another type");
  }
  store->Write({options.level, options.category, options.key, *value});
  store->Save();
  if (old.has_value() && TypeName(old->value) != TypeName(*value)) {
    Print(Describe(*value) + ", was " + Describe(old->value) + '\n');
  } else if (!old.has_value() && !has_type) {
    Print(Describe(*value) + '\n');
  }
  return kOk;
}

}  // namespace

void AddSet(CLI::App& program, ExitCode& result) {
  SetOptions& options = AddVerb<SetOptions>(
      program, result, "set", "Writes a preference; files and keys that are missing are made",
      "--private private.json \"My Plugin\" Runs 10", Set);
  AddPairOptions(options);
  AddChangeOptions(*options.verb, options.store);
  options.verb
      ->add_option("VALUE", options.value, "The value; -- goes before one that starts with -")
      ->required();
  options.verb
      ->add_option("--type", options.type,
                   "int, bool, double, string, or binary in hexadecimal digits. Left out: the "
                   "type that the preference has; of a new one, what the value is in JSON")
      ->type_name("TYPE");
}

}  // namespace vemora::tool
