#include "HelpText.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "Console.h"
#include "Table.h"

namespace vemora::tool {
namespace {

using Row = std::pair<std::string, std::string>;

/// Names in one column, what they mean beside them, no line longer than `width`.
std::string Describe(const std::vector<Row>& rows, std::size_t width) {
  constexpr std::size_t kWidestName = 22;
  std::size_t names = 0;
  for (const Row& row : rows) {
    names = std::max(names, std::min(row.first.size(), kWidestName));
  }
  const std::size_t indent = names + 4;
  std::string text;
  for (const auto& [name, description] : rows) {
    const bool fits = name.size() <= names;
    text += "  " + name +
            (fits ? std::string(indent - 2 - name.size(), ' ') : '\n' + std::string(indent, ' '));
    text += Wrapped(description, indent, width) + '\n';
  }
  return text;
}

bool IsPositional(const CLI::Option& option) { return option.get_positional(); }

std::string NameOf(const CLI::Option& option) {
  if (IsPositional(option)) {
    return option.get_name(true);
  }
  std::string name = option.get_snames().empty() ? "" : '-' + option.get_snames().front() + ", ";
  name += "--" + option.get_lnames().front();
  return option.get_items_expected_max() == 0 ? name : name + ' ' + option.get_type_name();
}

std::vector<Row> RowsOf(const CLI::App& app, bool positional) {
  std::vector<Row> rows;
  for (const CLI::Option* const option : app.get_options()) {
    if (IsPositional(*option) == positional) {
      rows.emplace_back(NameOf(*option), option->get_description());
    }
  }
  return rows;
}

std::string Section(const std::string& title, const std::vector<Row>& rows, std::size_t width) {
  return rows.empty() ? "" : '\n' + title + ":\n" + Describe(rows, width);
}

/// How many letters have to be changed, added or left out.
std::size_t Distance(const std::string& left, const std::string& right) {
  std::vector<std::size_t> costs(right.size() + 1);
  std::iota(costs.begin(), costs.end(), std::size_t{0});
  for (std::size_t row = 0; row < left.size(); ++row) {
    std::size_t diagonal = std::exchange(costs[0], row + 1);
    for (std::size_t column = 0; column < right.size(); ++column) {
      const std::size_t changed = diagonal + (left[row] == right[column] ? 0 : 1);
      diagonal = costs[column + 1];
      costs[column + 1] = std::min({changed, costs[column] + 1, diagonal + 1});
    }
  }
  return costs.back();
}

}  // namespace

std::string HelpOfProgram(const CLI::App& program, std::size_t width) {
  std::vector<Row> verbs;
  for (const CLI::App* const verb : program.get_subcommands({})) {
    verbs.emplace_back(verb->get_name(), verb->get_description());
  }
  return Wrapped(program.get_description(), 0, width) +
         "\n\nUsage: vemora-prefs VERB [OPTION]... [NAME]...\n" + Section("Verbs", verbs, width) +
         Section("Options", RowsOf(program, false), width) + '\n' +
         Wrapped(program.get_footer(), 0, width) + '\n';
}

std::string HelpOfVerb(const CLI::App& verb, std::size_t width) {
  std::string usage = "Usage: vemora-prefs " + verb.get_name() + " [OPTION]...";
  for (const CLI::Option* const option : verb.get_options()) {
    if (IsPositional(*option)) {
      const std::string name = option->get_name(true);
      usage += ' ' + (option->get_required() ? name : '[' + name + ']');
    }
  }
  return usage + "\n\n" + Wrapped(verb.get_description(), 0, width) + '\n' +
         Section("Names", RowsOf(verb, true), width) +
         Section("Options", RowsOf(verb, false), width) + '\n' + verb.get_footer() + '\n';
}

std::size_t HelpWidth() {
  constexpr std::size_t kUsual = 80;
  const std::size_t width = TerminalWidth();
  return width == 0 ? kUsual : width;
}

std::vector<std::string> VerbNames(const CLI::App& program) {
  std::vector<std::string> names;
  for (const CLI::App* const verb : program.get_subcommands({})) {
    names.push_back(verb->get_name());
  }
  return names;
}

std::vector<std::string> OptionNames(const CLI::App& verb) {
  std::vector<std::string> names;
  for (const CLI::Option* const option : verb.get_options()) {
    if (!IsPositional(*option)) {
      names.push_back("--" + option->get_lnames().front());
    }
  }
  return names;
}

const CLI::App* FindVerb(const CLI::App& program, const std::string& name) {
  const std::vector<const CLI::App*> verbs = program.get_subcommands({});
  const auto verb = std::find_if(verbs.begin(), verbs.end(), [&name](const CLI::App* candidate) {
    return candidate->get_name() == name;
  });
  return verb == verbs.end() ? nullptr : *verb;
}

std::string NearestVerb(const CLI::App& program, const std::string& wrong) {
  const std::vector<std::string> names = VerbNames(program);
  return *std::min_element(names.begin(), names.end(),
                           [&wrong](const std::string& left, const std::string& right) {
                             return Distance(left, wrong) < Distance(right, wrong);
                           });
}

}  // namespace vemora::tool
