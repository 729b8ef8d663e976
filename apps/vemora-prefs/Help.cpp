// vemora-prefs help and completion

#include "Console.h"
#include "HelpText.h"
#include "Verbs.h"

namespace vemora::tool {
namespace {

struct HelpOptions : VerbOptions {
  std::string name;
};

ExitCode Help(const HelpOptions& options) {
  const CLI::App& program = *options.verb->get_parent();
  if (options.name.empty()) {
    Print(HelpOfProgram(program, HelpWidth()));
    return kOk;
  }
  const CLI::App* const verb = FindVerb(program, options.name);
  if (verb == nullptr) {
    throw Failure(kUsage, "there is no verb '" + options.name + "'; did you mean '" +
                              NearestVerb(program, options.name) + "'?");
  }
  Print(HelpOfVerb(*verb, HelpWidth()));
  return kOk;
}

std::string Joined(const std::vector<std::string>& words, const std::string& between) {
  std::string text;
  for (const std::string& word : words) {
    text += (text.empty() ? "" : between) + word;
  }
  return text;
}

std::string ForBash(const CLI::App& program) {
  std::string cases;
  for (const CLI::App* const verb : program.get_subcommands({})) {
    cases += "    " + verb->get_name() + ") words='" + Joined(OptionNames(*verb), " ") + "' ;;\n";
  }
  return "_vemora_prefs() {\n"
         "  local words current=${COMP_WORDS[COMP_CWORD]}\n"
         "  case ${COMP_WORDS[1]} in\n" +
         cases +
         "  esac\n"
         "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
         "    words='" +
         Joined(VerbNames(program), " ") +
         "'\n"
         "  elif [[ $current != -* ]]; then\n"
         "    COMPREPLY=($(compgen -f -- \"$current\"))\n"
         "    return\n"
         "  fi\n"
         "  COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
         "}\n"
         "complete -F _vemora_prefs vemora-prefs vemora-prefs.exe\n";
}

std::string ForPowerShell(const CLI::App& program) {
  std::string table;
  for (const CLI::App* const verb : program.get_subcommands({})) {
    table += "    '" + verb->get_name() + "' = @('" + Joined(OptionNames(*verb), "', '") + "')\n";
  }
  return "Register-ArgumentCompleter -Native -CommandName vemora-prefs, vemora-prefs.exe "
         "-ScriptBlock {\n"
         "  param($word, $ast, $position)\n"
         "  $verbs = [ordered]@{\n" +
         table +
         "  }\n"
         "  $typed = @($ast.CommandElements | ForEach-Object { \"$_\" })\n"
         "  $isVerb = $typed.Count -lt 2 -or ($typed.Count -eq 2 -and $word)\n"
         "  $words = if ($isVerb) { $verbs.Keys } else { $verbs[$typed[1]] }\n"
         "  $words | Where-Object { $_ -like \"$word*\" }\n"
         "}\n";
}

struct CompletionOptions : VerbOptions {
  std::string shell;
};

ExitCode Complete(const CompletionOptions& options) {
  const CLI::App& program = *options.verb->get_parent();
  Print(options.shell == "bash" ? ForBash(program) : ForPowerShell(program));
  return kOk;
}

}  // namespace

void AddHelp(CLI::App& program, ExitCode& result) {
  HelpOptions& options = AddVerb<HelpOptions>(
      program, result, "help", "Tells how the program, or a verb, is used", "set", Help);
  options.verb->add_option("VERB", options.name, "The verb");
}

void AddCompletion(CLI::App& program, ExitCode& result) {
  CompletionOptions& options = AddVerb<CompletionOptions>(
      program, result, "completion", "Writes a script that completes verbs and options in a shell",
      "bash > vemora-prefs.bash", Complete);
  options.verb->add_option("SHELL", options.shell, "bash or powershell")
      ->required()
      ->check(CLI::IsMember({"bash", "powershell"}));
}

}  // namespace vemora::tool
