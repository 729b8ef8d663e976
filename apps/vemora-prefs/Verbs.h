/// @file
/// The verbs. Each adds itself to the command line; the callback of the one that is chosen runs it
/// and stores how the program ends.
#pragma once

#include <CLI/CLI.hpp>

#include "Console.h"
#include "Failure.h"

namespace vemora::tool {

void AddCheck(CLI::App& program, ExitCode& result);
void AddCompletion(CLI::App& program, ExitCode& result);
void AddDiff(CLI::App& program, ExitCode& result);
void AddDrop(CLI::App& program, ExitCode& result);
void AddDump(CLI::App& program, ExitCode& result);
void AddExplain(CLI::App& program, ExitCode& result);
void AddFind(CLI::App& program, ExitCode& result);
void AddGet(CLI::App& program, ExitCode& result);
void AddHelp(CLI::App& program, ExitCode& result);
void AddList(CLI::App& program, ExitCode& result);
void AddLoad(CLI::App& program, ExitCode& result);
void AddMigrate(CLI::App& program, ExitCode& result);
void AddProfile(CLI::App& program, ExitCode& result);
void AddReport(CLI::App& program, ExitCode& result);
void AddSet(CLI::App& program, ExitCode& result);
void AddUnset(CLI::App& program, ExitCode& result);
void AddWatch(CLI::App& program, ExitCode& result);

/// Adds a verb whose options live as long as the command line; `run` takes them.
/// The help, the completion and the manual have what they tell from here.
/// @param example a command line, less the program's name and the verb
template <typename Options>
Options& AddVerb(CLI::App& program, ExitCode& result, const std::string& name,
                 const std::string& description, const std::string& example,
                 ExitCode (*run)(const Options&)) {
  const auto options = std::make_shared<Options>();
  CLI::App* const verb = program.add_subcommand(name, description);
  verb->footer("Example:\n  vemora-prefs " + name + ' ' + example);
  verb->set_help_flag("-h,--help", "Tell how this verb is used");
  verb->add_flag_callback("--quiet", SetQuiet, "Write nothing but errors; the exit code tells");
  verb->callback([options, run, &result] { result = run(*options); });
  options->verb = verb;
  return *options;
}

/// What the options of all verbs have.
struct VerbOptions {
  CLI::App* verb = nullptr;
  bool json = false;
};

inline void AddJsonOption(VerbOptions& options) {
  options.verb->add_flag("--json", options.json, "Write JSON, for other programs");
}

}  // namespace vemora::tool
