// vemora-prefs get

#include "Console.h"
#include "Json.h"
#include "PairOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

ExitCode Get(const PairOptions& options) {
  const Entry entry = Require(*OpenStore(options.store, Access::kRead), options);
  Print(options.json ? MakeJson([&entry](JsonWriter& writer) { WriteEntry(writer, entry); })
                     : ToText(entry.value) + '\n');
  return kOk;
}

}  // namespace

void AddGet(CLI::App& program, ExitCode& result) {
  PairOptions& options = AddVerb<PairOptions>(
      program, result, "get", "Prints the value of a preference, as a host would read it",
      "--private private.json \"My Plugin\" Runs", Get);
  AddPairOptions(options);
  AddJsonOption(options);
}

}  // namespace vemora::tool
