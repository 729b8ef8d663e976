// vemora-prefs watch

#include <windows.h>

#include "Console.h"
#include "Difference.h"
#include "StoreOptions.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

constexpr DWORD kPause = 200;  // milliseconds between two looks

struct WatchOptions : VerbOptions {
  StoreOptions store;
};

/// What the store holds now; nothing while it cannot be read, as while a host rewrites a file.
std::optional<std::vector<Entry>> Look(const StoreOptions& store) {
  try {
    return OpenStore(store, Access::kRead)->Read();
  } catch (const Failure&) {
    return std::nullopt;
  }
}

ExitCode Watch(const WatchOptions& options) {
  std::vector<Entry> known = OpenStore(options.store, Access::kRead)->Read();
  for (;;) {  // until the user interrupts it
    Sleep(kPause);
    const std::optional<std::vector<Entry>> found = Look(options.store);
    if (!found.has_value()) {
      continue;
    }
    for (const Difference& difference : Compare(known, *found)) {
      Print(ToLines(difference));
    }
    known = *found;
  }
}

}  // namespace

void AddWatch(CLI::App& program, ExitCode& result) {
  WatchOptions& options =
      AddVerb<WatchOptions>(program, result, "watch",
                            "Prints each change of a store, until it is interrupted with Ctrl+C",
                            "--private private.json --shared shared.json", Watch);
  AddStoreOptions(*options.verb, options.store);
}

}  // namespace vemora::tool
