#include "help.h"

#include <sstream>

namespace quofp {
namespace {

constexpr size_t kNames = 26;        // columns for the names
constexpr size_t kDescription = 74;  // and for what they mean

// Lines of words no longer than a width, where the words allow it.
std::string wrapped(const std::string& text, size_t width) {
  std::istringstream words(text);
  std::string result;
  size_t used = 0;
  for (std::string word; words >> word; used += word.size()) {
    const bool fits = used + 1 + word.size() <= width;
    if (used != 0) result += fits ? ' ' : '\n';
    used = used == 0 || !fits ? 0 : used + 1;
    result += word;
  }
  return result;
}

class HelpFormat : public CLI::Formatter {
 public:
  HelpFormat() {
    column_width(kNames);
    label("Positionals", "Arguments");
    label("SUBCOMMAND", "COMMAND");
  }

  std::string make_option_name(const CLI::Option* option, bool is_positional) const override {
    return CLI::detail::find_and_replace(Formatter::make_option_name(option, is_positional), ",", ", ");
  }

  // What an argument is, its description says.
  std::string make_option_opts(const CLI::Option* option) const override {
    const bool has_value = !option->get_positional() && option->get_items_expected_max() > 0;
    return has_value && !option->get_type_name().empty() ? " " + option->get_type_name() : "";
  }

  std::string make_option_desc(const CLI::Option* option) const override {
    std::string text = option->get_description();
    if (option->get_required() && !option->get_positional()) text += " (required)";
    for (const CLI::Option* const other : option->get_needs()) text += " (needs " + other->get_name() + ")";
    return wrapped(text, kDescription);
  }

  // One empty line between groups.
  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
    return CLI::detail::find_and_replace(Formatter::make_help(app, name, mode), "\n\n\n", "\n\n");
  }
};

}  // namespace

std::shared_ptr<CLI::FormatterBase> help_format() { return std::make_shared<HelpFormat>(); }

}  // namespace quofp
