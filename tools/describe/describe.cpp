// SPDX-License-Identifier: Apache-2.0
#include "describe/describe.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <vector>

namespace fp_tools {
namespace {

std::vector<const CLI::App*> CommandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<const CLI::Option*> OptionsOf(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) {
    return option->nonpositional() && !option->get_group().empty();
  });
}

// Escapes what troff would interpret: hyphens, backslashes, and a dot or quote at the start of a
// line.
std::string Roff(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '-' || c == '\\') {
      out += '\\';
    }
    if ((c == '.' || c == '\'') && (out.empty() || out.back() == '\n')) {
      out += "\\&";
    }
    out += c;
  }
  return out;
}

std::string Spellings(const CLI::Option& option) {
  std::string text = option.get_name(false, true);
  std::replace(text.begin(), text.end(), ',', ' ');
  const std::string value = option.get_items_expected_max() > 0 ? " " + option.get_type_name() : "";
  return text + value.substr(0, value.find(':'));
}

std::string ManPage(const CLI::App& app, const std::string& arguments) {
  std::string title = app.get_name();
  std::transform(title.begin(), title.end(), title.begin(), toupper);
  std::string page =
      fmt::format(".TH {} 1\n.SH NAME\n{} \\- {}\n.SH SYNOPSIS\n.B {}\n{}\n.SH COMMANDS\n", title,
                  app.get_name(), Roff(app.get_description()), app.get_name(), Roff(arguments));
  for (const CLI::App* command : CommandsOf(app)) {
    page += fmt::format(".SS {}\n{}\n", command->get_name(), Roff(command->get_description()));
    for (const CLI::Option* option : OptionsOf(*command)) {
      page += fmt::format(".TP\n.B {}\n{}\n", Roff(Spellings(*option)),
                          Roff(option->get_description()));
    }
  }
  return page + ".SH NOTES\n.nf\n" + Roff(app.get_footer()) + "\n.fi\n";
}

std::string LongNames(const CLI::App& app) {
  std::string names;
  for (const CLI::Option* option : OptionsOf(app)) {
    for (const std::string& name : option->get_lnames()) {
      names += (names.empty() ? "--" : " --") + name;
    }
  }
  return names;
}

std::string Bash(const CLI::App& app) {
  std::string names;
  std::string cases;
  for (const CLI::App* command : CommandsOf(app)) {
    names += (names.empty() ? "" : " ") + command->get_name();
    cases += fmt::format("    {}) words=\"{}\" ;;\n", command->get_name(), LongNames(*command));
  }
  return fmt::format(
      "_{0}() {{\n  local words current=${{COMP_WORDS[COMP_CWORD]}}\n"
      "  case ${{COMP_WORDS[1]}} in\n{1}    *) words=\"{2} --help\" ;;\n  esac\n"
      "  COMPREPLY=()\n  if [[ $COMP_CWORD -eq 1 || $current == -* ]]; then\n"
      "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n  fi\n}}\n"
      "complete -o default -F _{0} {0}\n",
      app.get_name(), cases, names);
}

std::string Zsh(const CLI::App& app) {
  std::string names;
  std::string cases;
  for (const CLI::App* command : CommandsOf(app)) {
    names += command->get_name() + " ";
    cases += fmt::format("    {}) compadd -- {} ;;\n", command->get_name(), LongNames(*command));
  }
  return fmt::format(
      "#compdef {}\nif (( CURRENT == 2 )); then\n  compadd -- {}--help\n"
      "elif [[ $words[CURRENT] == -* ]]; then\n  case $words[2] in\n{}  esac\nelse\n  _files\nfi\n",
      app.get_name(), names, cases);
}

}  // namespace

std::string Describe(const CLI::App& app, const std::string& format, const std::string& arguments) {
  return format == "man" ? ManPage(app, arguments) : format == "bash" ? Bash(app) : Zsh(app);
}

}  // namespace fp_tools
