// Looks into preference stores and changes them, from the command line.

#include <windows.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <string>
#include <vector>

#include "Console.h"
#include "Failure.h"
#include "Verbs.h"
#include "utils/vemora_ustring.h"

namespace vemora::tool {
namespace {

int Fail(ExitCode code, const std::string& text) {
  PrintError("vemora-prefs: " + text + '\n');
  return code;
}

/// The command line's own complaints, without their line breaks.
std::string OneLine(std::string text) {
  for (char& unit : text) {
    unit = unit == '\n' ? ' ' : unit;
  }
  return text;
}

int Run(std::vector<std::string> arguments) {
  CLI::App program("Looks into stores of preferences: two JSON files, or a key of the registry.",
                   "vemora-prefs");
  program.footer(
      "Every verb takes a store (diff and migrate take two): --private FILE, --shared FILE or "
      "both,\n"
      "or --registry PATH. 'vemora-prefs VERB --help' tells the rest, with an example.\n\n"
      "Exit codes: 0 found or done, 1 absent or different, 2 wrong usage, 3 the store is "
      "unusable.");
  program.allow_windows_style_options(false);
  program.require_subcommand(1);
  program.fallthrough(false);
  program.set_help_flag("-h,--help", "Tells how this is used");
  ExitCode result = kOk;
  for (const auto add : {AddList, AddGet, AddSet, AddUnset, AddDrop, AddExplain, AddDump, AddLoad,
                         AddCheck, AddDiff, AddMigrate}) {
    add(program, result);
  }
  try {
    program.parse(arguments);
    return result;
  } catch (const CLI::CallForHelp&) {
    const auto chosen = program.get_subcommands();
    Print(chosen.empty() ? program.help() : chosen.front()->help(program.get_name()));
    return kOk;
  } catch (const CLI::ParseError& error) {
    return Fail(kUsage, OneLine(error.what()) + "; see 'vemora-prefs --help'");
  } catch (const Failure& failure) {
    return Fail(failure.code(), failure.what());
  } catch (const std::exception& error) {
    return Fail(kUnusable, std::string("out of memory, or so it seems: ") + error.what() +
                               "; take a smaller store");
  }
}

}  // namespace
}  // namespace vemora::tool

int wmain(int count, wchar_t** arguments) {
  using vemora::utils::vemora_ustring;
  std::vector<std::string> utf8;
  for (int index = count - 1; index > 0; --index) {  // the last comes first, as the parser wants it
    utf8.push_back(vemora_ustring(arguments[index]).ToUtf8());
  }
  return vemora::tool::Run(utf8);
}
