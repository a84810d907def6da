#include "manual.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <sstream>

#include "failure.h"
#include "frame_io.h"
#include "inputs.h"
#include "measures.h"
#include "quoFPAlg.h"

namespace quofp {
namespace {

using Options = std::vector<const CLI::Option*>;

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
  return text;
}

// Text for troff, in which backslashes, hyphens and what begins a line have a meaning.
std::string roff(const std::string& text) {
  std::string result = replaced(replaced(text, "\\", "\\e"), "-", "\\-");
  result = replaced(result, "\n.", "\n\\&.");
  result = replaced(result, "\n'", "\n\\&'");
  return !result.empty() && (result[0] == '.' || result[0] == '\'') ? "\\&" + result : result;
}

bool takes_value(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

// "-o, --output PATH"
std::string heading_of(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : option.get_snames()) names += (names.empty() ? "-" : ", -") + name;
  for (const std::string& name : option.get_lnames()) names += (names.empty() ? "--" : ", --") + name;
  if (names.empty()) return option.get_name(true);
  return takes_value(option) && !option.get_type_name().empty() ? names + " " + option.get_type_name() : names;
}

Options options_of(const CLI::App& command) {
  Options options = command.get_options([](const CLI::Option* option) { return !option->get_group().empty(); });
  const auto place = [](const CLI::Option* option) {  // arguments first, then what stands in no group of its own
    return option->get_positional() ? 0 : option->get_group() == "Options" ? 1 : 2;
  };
  std::stable_sort(options.begin(), options.end(),
                   [&](const CLI::Option* a, const CLI::Option* b) { return place(a) < place(b); });
  return options;
}

std::vector<const CLI::App*> operators_of(const CLI::App& command) {
  return command.get_subcommands([](const CLI::App*) { return true; });
}

std::string synopsis_of(const CLI::App& command) {
  std::string text = "[OPTIONS]";
  for (const CLI::Option* const option : options_of(command)) {
    if (!option->get_positional()) continue;
    const std::string name = option->get_name(true) + (option->get_items_expected_max() > 1 ? "..." : "");
    text += option->get_required() ? " " + name : " [" + name + "]";
  }
  return text;
}

// Whether all of the commands have an option of this name and meaning.
bool is_common(const CLI::Option& option, const std::vector<const CLI::App*>& commands) {
  return std::all_of(commands.begin(), commands.end(), [&](const CLI::App* command) {
    const Options options = options_of(*command);
    return std::any_of(options.begin(), options.end(), [&](const CLI::Option* own) {
      return heading_of(*own) == heading_of(option) && own->get_description() == option.get_description();
    });
  });
}

void print_options(std::ostream& out, const Options& options) {
  std::string group;
  for (const CLI::Option* const option : options) {
    if (option->get_group() != group && option->get_group() != "Options" && !option->get_positional()) {
      out << ".SS " << roff(group = option->get_group()) << '\n';
    }
    out << ".TP\n.B " << roff(heading_of(*option)) << '\n' << roff(option->get_description()) << '\n';
  }
}

void print_heading(std::ostream& out, const std::string& title, const std::string& summary) {
  std::string upper = title;
  std::transform(upper.begin(), upper.end(), upper.begin(), [](unsigned char c) { return std::toupper(c); });
  out << ".TH \"" << roff(upper) << "\" 1 \"\" \"quofp " << QUO_VERSION << "\" \"User Commands\"\n.SH NAME\n"
      << roff(title) << " \\- " << roff(summary) << '\n';
}

std::string command_page(const CLI::App& command, const Description& description) {
  std::ostringstream out;
  print_heading(out, "quofp-" + description.name, description.summary);
  out << ".SH SYNOPSIS\n.B quofp " << roff(description.name) << '\n';
  const auto operators = operators_of(command);
  out << (operators.empty() ? roff(synopsis_of(command)) : "OPERATOR [OPTIONS] ...") << '\n';
  out << ".SH DESCRIPTION\n" << roff(description.summary) << ".\n";
  if (!description.details.empty()) {
    out << ".PP\n" << replaced(roff(description.details), "\nColumns:", "\n.PP\nColumns:") << '\n';
  }
  // What every operator takes stands once, before them all.
  Options common = options_of(operators.empty() ? command : *operators.front());
  std::erase_if(common, [&](const CLI::Option* option) { return !is_common(*option, operators); });
  out << ".SH OPTIONS\n";
  print_options(out, common);
  for (const CLI::App* const own : operators) {
    out << ".SH " << roff(own->get_name()) << '\n' << roff(own->get_description()) << ".\n";
    Options options = options_of(*own);
    std::erase_if(options, [&](const CLI::Option* option) { return is_common(*option, operators); });
    print_options(out, options);
  }
  out << ".SH EXAMPLES\n.nf\n";
  for (const std::string& example : description.examples) out << roff(example) << '\n';
  out << ".fi\n.SH SEE ALSO\n.BR quofp (1)\n";
  return out.str();
}

std::string main_page(const CLI::App& app, const std::vector<Description>& commands) {
  std::ostringstream out;
  print_heading(out, "quofp", "looks at frames of a fingerprint sensor");
  out << ".SH SYNOPSIS\n.B quofp\nCOMMAND [OPTIONS] ...\n.SH DESCRIPTION\n"
      << roff(app.get_description()) << "\nEvery command has a page of its own.\n.SH COMMANDS\n";
  std::string group;
  for (const Description& command : commands) {
    const std::string& own = app.get_subcommand(command.name)->get_group();
    if (own != group) out << ".SS " << roff(group = own) << '\n';
    out << ".TP\n.BR quofp\\-" << roff(command.name) << " (1)\n" << roff(command.summary) << '\n';
  }
  out << ".SH OPTIONS\n";
  print_options(out, options_of(app));
  out << ".SH EXIT STATUS\n0 done, 1 the library refused a frame or a check failed, 2 usage, 3 input or output, 130\n"
         "interrupted. Of several frames the worst.\n.SH ENVIRONMENT\n.TP\n.B NO_COLOR\nwhen set, terminals get no "
         "colours.\n";
  return out.str();
}

// Long and short names of a command's options, as words.
std::string words_of(const CLI::App& command) {
  std::string words;
  for (const CLI::Option* const option : options_of(command)) {
    for (const std::string& name : option->get_lnames()) words += (words.empty() ? "--" : " --") + name;
    for (const std::string& name : option->get_snames()) words += (words.empty() ? "-" : " -") + name;
  }
  return words;
}

/** Calls `line(command, operator or null)` for every command and every operator. */
void for_each_command(const CLI::App& app, const std::vector<Description>& commands,
                      const std::function<void(const CLI::App&, const CLI::App*)>& line) {
  for (const Description& description : commands) {
    const CLI::App& command = *app.get_subcommand(description.name);
    line(command, nullptr);
    for (const CLI::App* const own : operators_of(command)) line(command, own);
  }
}

// The words that may follow an option; none where files or numbers do.
std::string choices_of(const std::string& option) {
  static const std::map<std::string, std::string> kChoices = {{"bits", "8 10 12 16"},
                                                              {"borders", "all top bottom left right"},
                                                              {"endian", "little big"},
                                                              {"format", "table csv json"},
                                                              {"stage", "borders stripes balance all"},
                                                              {"pattern", "arch left-loop right-loop whorl twin-loop"}};
  if (const auto known = kChoices.find(option); known != kChoices.end()) return known->second;
  std::string names;
  if (option == "sort-by") {
    for (const Measure* const measure : all_measures()) {
      for (const Column& column : measure->columns) {
        if (is_figure(column.name)) names += (names.empty() ? "" : " ") + column.name;
      }
    }
  }
  return names;
}

std::set<std::string> options_with_choices(const CLI::App& app, const std::vector<Description>& commands) {
  std::set<std::string> names;
  for_each_command(app, commands, [&](const CLI::App& command, const CLI::App* own) {
    for (const CLI::Option* const option : options_of(own != nullptr ? *own : command)) {
      for (const std::string& name : option->get_lnames()) {
        if (!choices_of(name).empty()) names.insert(name);
      }
    }
  });
  return names;
}

std::string names_of(const std::vector<Description>& commands) {
  std::string names;
  for (const Description& command : commands) names += (names.empty() ? "" : " ") + command.name;
  return names;
}

std::string bash_completion(const CLI::App& app, const std::vector<Description>& commands) {
  std::ostringstream out;
  out << "# bash completion for quofp\n_quofp() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} words=\n"
         "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
         "    COMPREPLY=($(compgen -W '"
      << names_of(commands)
      << " --help --version' -- \"$current\"))\n    return\n  fi\n"
         "  case \"${COMP_WORDS[1]} ${COMP_WORDS[2]}\" in\n";
  std::ostringstream general;  // after the operators, which are told by two words
  for_each_command(app, commands, [&](const CLI::App& command, const CLI::App* own) {
    if (own != nullptr) {
      out << "    '" << command.get_name() << ' ' << own->get_name() << "') words='" << words_of(*own) << "' ;;\n";
      return;
    }
    std::string words = words_of(command);
    for (const CLI::App* const next : operators_of(command)) words += " " + next->get_name();
    general << "    '" << command.get_name() << " '*) words='" << words << "' ;;\n";
  });
  out << general.str() << "  esac\n  case \"${COMP_WORDS[COMP_CWORD-1]}\" in\n";
  for (const std::string& name : options_with_choices(app, commands)) {
    out << "    --" << name << ") COMPREPLY=($(compgen -W '" << choices_of(name) << "' -- \"$current\")); return ;;\n";
  }
  out << "  esac\n"
         "  if [[ $current == -* || ${COMP_WORDS[1]} == op && $COMP_CWORD -eq 2 ]]; then\n"
         "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
         "  else\n"
         "    compopt -o filenames 2>/dev/null\n"
         "    COMPREPLY=($(compgen -f -- \"$current\"))\n"
         "  fi\n}\ncomplete -F _quofp quofp\n";
  return out.str();
}

// Text within single quotes, for the given escape of one.
std::string quoted(const std::string& text, const std::string& escape) {
  return "'" + replaced(text, "'", escape) + "'";
}

std::string zsh_completion(const CLI::App& app, const std::vector<Description>& commands) {
  const auto text = [](const std::string& words) {  // brackets and colons have a meaning of their own there
    return replaced(replaced(replaced(words, "[", "\\["), "]", "\\]"), ":", "\\:");
  };
  const auto values = [](const std::string& name) {
    const std::string choices = choices_of(name);
    return choices.empty() ? "_files" : "(" + choices + ")";
  };
  std::ostringstream out;
  out << "#compdef quofp\n_quofp() {\n  local -a commands=(\n";
  for (const Description& command : commands) {
    out << "    " << quoted(command.name + ":" + text(command.summary), "'\\''") << '\n';
  }
  out << "  )\n  if (( CURRENT == 2 )); then\n    _describe command commands\n    return\n  fi\n"
         "  local -a options\n  case \"$words[2] $words[3]\" in\n";
  std::ostringstream general;
  for_each_command(app, commands, [&](const CLI::App& command, const CLI::App* own) {
    std::ostringstream& into = own != nullptr ? out : general;
    into << "    "
         << (own != nullptr ? "'" + command.get_name() + " " + own->get_name() + "')"
                            : "'" + command.get_name() + " '*)")
         << " options=(\n";
    for (const CLI::Option* const option : options_of(own != nullptr ? *own : command)) {
      for (const std::string& name : option->get_lnames()) {
        into << "      "
             << quoted("--" + name + "[" + text(option->get_description()) + "]" +
                           (takes_value(*option) ? ":" + text(option->get_type_name()) + ":" + values(name) : ""),
                       "'\\''")
             << '\n';
      }
    }
    if (own == nullptr && !operators_of(command).empty()) {
      into << "      '1:operator:(";
      for (const CLI::App* const next : operators_of(command)) into << next->get_name() << ' ';
      into << ")'\n";
    }
    into << "    ) ;;\n";
  });
  out << general.str() << "  esac\n  shift words\n  (( CURRENT-- ))\n  _arguments $options '*:frame:_files'\n}\n"
      << "_quofp \"$@\"\n";
  return out.str();
}

std::string fish_completion(const CLI::App& app, const std::vector<Description>& commands) {
  std::ostringstream out;
  out << "# fish completion for quofp\ncomplete -c quofp -n __fish_use_subcommand -l help -l version\n";
  for (const Description& command : commands) {
    out << "complete -c quofp -n __fish_use_subcommand -f -a " << command.name << " -d "
        << quoted(command.summary, "\\'") << '\n';
  }
  for_each_command(app, commands, [&](const CLI::App& command, const CLI::App* own) {
    const std::string& name = own != nullptr ? own->get_name() : command.get_name();
    if (own != nullptr) {
      out << "complete -c quofp -n '__fish_seen_subcommand_from " << command.get_name() << "' -a " << name << " -d "
          << quoted(own->get_description(), "\\'") << '\n';
    }
    for (const CLI::Option* const option : options_of(own != nullptr ? *own : command)) {
      if (option->get_lnames().empty()) continue;
      out << "complete -c quofp -n '__fish_seen_subcommand_from " << name << "' -l " << option->get_lnames().front();
      for (const std::string& letter : option->get_snames()) out << " -s " << letter;
      const std::string choices = choices_of(option->get_lnames().front());
      if (!choices.empty()) out << " -x -a " << quoted(choices, "\\'");
      out << (takes_value(*option) ? " -r" : "") << " -d " << quoted(option->get_description(), "\\'") << '\n';
    }
  });
  return out.str();
}

}  // namespace

void write_manual(const CLI::App& app, const std::vector<Description>& commands, const std::string& folder) {
  make_folder(folder);
  const auto write = [&folder](const std::string& name, const std::string& text) {
    const std::vector<uint8_t> bytes(text.begin(), text.end());
    write_file((std::filesystem::path(folder) / name).string(), bytes);
  };
  write("quofp.1", main_page(app, commands));
  for (const Description& command : commands) {
    write("quofp-" + command.name + ".1", command_page(*app.get_subcommand(command.name), command));
  }
  write("quofp.bash", bash_completion(app, commands));
  write("_quofp", zsh_completion(app, commands));
  write("quofp.fish", fish_completion(app, commands));
}

}  // namespace quofp
