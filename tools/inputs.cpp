#include "inputs.h"

namespace quofp {

CLI::Option* add_size_option(CLI::App& command, const std::string& name, std::optional<Size>& size,
                             const std::string& description) {
  const auto store = [name, &size](const std::string& text) {
    size = parse_size(text);
    if (!size) throw CLI::ValidationError(name, "'" + text + "' is not a size such as 160x120");
  };
  return command.add_option_function<std::string>(name, store, description)->type_name("WxH");
}

CLI::Option* add_number_option(CLI::App& command, const std::string& name, int32_t& value, int32_t low, int32_t high,
                               const std::string& description) {
  const std::string bounds =
      " (" + std::to_string(low) + " to " + std::to_string(high) + ") [" + std::to_string(value) + "]";
  return command.add_option(name, value, description + bounds)
      ->check(CLI::Range(low, high).description(""))
      ->type_name("N");
}

void add_reading_options(CLI::App& command, Inputs& inputs) {
  add_size_option(command, "--size", inputs.raw_size, "size of raw frames, one byte a pixel");
}

void add_inputs(CLI::App& command, Inputs& inputs) {
  command.add_option("IN", inputs.files, "frames: PNG, PGM, or raw bytes with --size")->required()->type_name("FILE");
  add_reading_options(command, inputs);
}

void add_input(CLI::App& command, Inputs& inputs) {
  command.add_option("IN", inputs.files, "frame: PNG, PGM, or raw bytes with --size")
      ->required()
      ->expected(1)
      ->type_name("FILE");
  add_reading_options(command, inputs);
}

}  // namespace quofp
