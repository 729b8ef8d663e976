// vemora-prefs get

#include "Console.h"
#include "Escape.h"
#include "Json.h"
#include "PairOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct GetOptions : PairOptions {
  bool raw = false;
};

ExitCode Get(const GetOptions& options) {
  const Entry entry = Require(*OpenStore(options.store, Access::kRead), options);
  const std::string text = ToText(entry.value);
  Print(options.json  ? MakeJson([&entry](JsonWriter& writer) { WriteEntry(writer, entry); })
        : options.raw ? text
                      : Escaped(text) + '\n');
  return kOk;
}

}  // namespace

void AddGet(CLI::App& program, ExitCode& result) {
  GetOptions& options = AddVerb<GetOptions>(
      program, result, "get", "Prints the value of a preference, as a host would read it",
      "--private private.json \"My Plugin\" Runs", Get);
  AddPairOptions(options);
  AddJsonOption(options);
  options.verb->add_flag("--raw", options.raw,
                         "Write a text as it is: nothing is escaped, and no line break follows");
}

}  // namespace vemora::tool
