// vemora-prefs set

#include "PairOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct SetOptions : PairOptions {
  std::string type;
  std::string value;
};

ExitCode Set(const SetOptions& options) {
  const Value value = ParseValue(options.type, options.value);
  const std::unique_ptr<Store> store = OpenStore(options.store, Access::kMake);
  if (const std::optional<std::string> reason = store->Refuses(value)) {
    throw Failure(kUsage, *reason + "; choose another type");
  }
  store->Write({options.level, options.category, options.key, value});
  store->Save();
  return kOk;
}

}  // namespace

void AddSet(CLI::App& program, ExitCode& result) {
  SetOptions& options = AddVerb<SetOptions>(
      program, result, "set", "Writes a preference; files and keys that are missing are made",
      "--private private.json \"My Plugin\" Runs 10 --type int", Set);
  AddPairOptions(options);
  options.verb
      ->add_option("VALUE", options.value, "The value; -- goes before one that starts with -")
      ->required();
  options.verb
      ->add_option("--type", options.type,
                   "int, bool, double, string, or binary in hexadecimal digits")
      ->required()
      ->type_name("TYPE");
}

}  // namespace vemora::tool
