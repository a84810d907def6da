#include "inputs.h"

#include <filesystem>
#include <set>

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

void add_output(CLI::App& command, Output& output, const std::string& description) {
  command.add_option("-o,--output", output.path, description)->required()->type_name("PATH");
}

Outputs::Outputs(const Inputs& inputs, const Output& output, const std::string& ending) {
  const std::filesystem::path folder = output.path;
  if (inputs.files.size() == 1 && folder.has_filename() && !std::filesystem::is_directory(folder)) {
    paths_[inputs.files[0]] = output.path;
    return;
  }
  std::set<std::filesystem::path> taken;
  for (const std::string& file : inputs.files) {
    const std::filesystem::path path = folder / std::filesystem::path(file).filename().replace_extension(ending);
    if (!taken.insert(path).second) throw usage_failure("two inputs would be written to " + path.string());
    paths_[file] = path.string();
  }
  make_folder(output.path);
}

void make_folder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) throw file_failure(path, "cannot be made a folder: " + error.message());
}

}  // namespace quofp
