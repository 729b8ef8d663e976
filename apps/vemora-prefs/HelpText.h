/// @file
/// Help and completion, made of what the verbs add to the command line.
#pragma once

#include <CLI/CLI.hpp>
#include <cstddef>
#include <string>
#include <vector>

namespace vemora::tool {

/// All verbs, each in a line.
std::string HelpOfProgram(const CLI::App& program, std::size_t width);

std::string HelpOfVerb(const CLI::App& verb, std::size_t width);

/// The columns that help may take: those of the terminal, 80 elsewhere.
std::size_t HelpWidth();

/// The names of the verbs, in the order of the help.
std::vector<std::string> VerbNames(const CLI::App& program);

/// The long options of a verb.
std::vector<std::string> OptionNames(const CLI::App& verb);

/// Null when there is no such verb.
const CLI::App* FindVerb(const CLI::App& program, const std::string& name);

/// The verb whose name is most like a wrong one.
std::string NearestVerb(const CLI::App& program, const std::string& wrong);

}  // namespace vemora::tool
