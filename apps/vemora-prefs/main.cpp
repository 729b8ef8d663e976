// Looks into preference stores and changes them, from the command line.

#include <windows.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <string>
#include <vector>

#include "Console.h"
#include "Escape.h"
#include "Failure.h"
#include "HelpText.h"
#include "Verbs.h"
#include "utils/vemora_ustring.h"

namespace vemora::tool {
namespace {

int Fail(ExitCode code, const std::string& text, const std::string& details = "") {
  PrintError("vemora-prefs: " + Escaped(text) + '\n' + details);
  return code;
}

/// The command line's own complaints, without their line breaks.
std::string OneLine(std::string text) {
  for (char& unit : text) {
    unit = unit == '\n' ? ' ' : unit;
  }
  return text;
}

void AddVerbs(CLI::App& program, ExitCode& result) {
  for (const auto add :
       {AddList, AddFind, AddGet, AddSet, AddUnset, AddDrop, AddExplain, AddDump, AddLoad, AddCheck,
        AddDiff, AddWatch, AddReport, AddMigrate, AddProfile, AddCompletion, AddHelp}) {
    add(program, result);
  }
}

/// The verb of a command line.
/// @throws Failure when there is none of that name
std::string VerbOf(const CLI::App& program, const std::vector<std::string>& arguments) {
  if (arguments.empty()) {
    throw Failure(kUsage, "no verb was given; 'vemora-prefs help' lists them");
  }
  const std::string& verb = arguments.back();  // the last comes first
  if (verb.substr(0, 1) != "-" && FindVerb(program, verb) == nullptr) {
    throw Failure(kUsage, "there is no verb '" + verb + "'; did you mean '" +
                              NearestVerb(program, verb) + "'? 'vemora-prefs help' lists them");
  }
  return verb;
}

void RunVerb(CLI::App& program, const std::vector<std::string>& arguments) {
  const std::string verb = VerbOf(program, arguments);
  try {
    std::vector<std::string> rest = arguments;
    program.parse(rest);
  } catch (const CLI::CallForHelp&) {
    const auto chosen = program.get_subcommands();
    Print(chosen.empty() ? HelpOfProgram(program, HelpWidth())
                         : HelpOfVerb(*chosen.front(), HelpWidth()));
  } catch (const CLI::CallForVersion& version) {
    Print(version.what() + std::string("\n"));
  } catch (const CLI::ParseError& error) {
    throw Failure(kUsage, OneLine(error.what()) + "; see 'vemora-prefs help" +
                              (verb[0] == '-' ? "" : ' ' + verb) + '\'');
  }
}

int Run(const std::vector<std::string>& arguments) {
  CLI::App program("Looks into stores of preferences: two JSON files, or a key of the registry.",
                   "vemora-prefs");
  program.footer(
      "A verb takes a store (diff and migrate take two): --private FILE, --shared FILE or both, "
      "--registry PATH, or --profile NAME. 'vemora-prefs help VERB' tells the rest, with an "
      "example. Exit codes: 0 found or done, 1 absent or different, 2 wrong usage, 3 the store is "
      "unusable.");
  program.allow_windows_style_options(false);
  program.require_subcommand(1);
  program.fallthrough(false);
  program.set_help_flag("-h,--help", "Tell how the program is used");
  program.set_version_flag("--version", "vemora-prefs " VEMORA_PREFS_VERSION,
                           "Tell the version of the program");
  ExitCode result = kOk;
  AddVerbs(program, result);
  try {
    RunVerb(program, arguments);
    return result;
  } catch (const ClosedPipe&) {
    return kOk;
  } catch (const Failure& failure) {
    return Fail(failure.code(), failure.what(), failure.details());
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
