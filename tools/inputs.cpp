#include "inputs.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <map>
#include <set>

namespace quofp {
namespace {

constexpr const char* kWhatFrames =
    "PNG, PGM, raw with --size; folders, patterns such as 'lot/*.png', - for standard input, dump.raw#7";
constexpr int64_t kFarthestOffset = int64_t{1} << 50;
constexpr int64_t kLongestRow = int64_t{1} << 20;  // bytes
constexpr int64_t kMostFrames = 1000000000;

}  // namespace

Frame Inputs::read_only() const {
  FrameReader reader(files, reading);
  const int64_t total = reader.total().value_or(1);
  if (total > 1)
    throw usage_failure("the command takes one frame, but " + files.at(0) + " stands for " + std::to_string(total));
  const std::optional<Encoded> encoded = reader.next();
  if (!encoded) throw file_failure(files.at(0), "holds no frame");
  Frame frame = decode(*encoded, reading);
  announce(frame);
  return frame;
}

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

void add_reading_options(CLI::App& command, Reading& reading) {
  RawLayout& raw = reading.raw;
  constexpr const char* kGroup = "Reading frames";
  const auto store_size = [&raw](const std::string& text) {
    const std::optional<Size> size = parse_size(text);
    if (!size) throw CLI::ValidationError("--size", "'" + text + "' is not a size such as 160x120");
    raw.size = *size;
  };
  command.add_option_function<std::string>("--size", store_size, "size of raw frames")->type_name("WxH")->group(kGroup);
  const auto number = [&](const char* name, auto& value, int64_t low, int64_t high, const char* description) {
    command.add_option(name, value, description)
        ->check(CLI::Range(low, high).description(""))
        ->type_name("N")
        ->group(kGroup);
  };
  number("--offset", raw.offset, 0, kFarthestOffset, "raw: bytes before the first frame [0]");
  number("--stride", raw.stride, 1, kLongestRow, "raw: bytes from one row to the next [those of a row]");
  command.add_option("--bits", raw.bits, "raw: bits of a pixel, 8, 10, 12 or 16; above 8 in two bytes [8]")
      ->check(CLI::IsMember({8, 10, 12, 16}).description(""))
      ->type_name("N")
      ->group(kGroup);
  command
      .add_option_function<std::string>(
          "--endian", [&raw](const std::string& order) { raw.big_endian = order == "big"; },
          "raw: little or big, the byte order of pixels of two bytes [little]")
      ->check(CLI::IsMember({"little", "big"}).description(""))
      ->type_name("ORDER")
      ->group(kGroup);
  number("--count", raw.count, 0, kMostFrames, "raw: frames in a file, 0 for as many as there are [just one]");
  const auto store_crop = [&reading](const std::string& text) {
    reading.crop = parse_crop(text);
    if (!reading.crop) throw CLI::ValidationError("--crop", "'" + text + "' is not a part such as 8,16,128,96");
  };
  command.add_option_function<std::string>("--crop", store_crop, "the part of every frame that is used")
      ->type_name("X,Y,W,H")
      ->group(kGroup);
  command.add_flag("--invert", reading.invert, "swaps dark and bright, for sensors with bright ridges")->group(kGroup);
  command
      .add_flag("--scale-to-8bit", reading.scale,
                "spreads the values that occur in a frame over 0 to 255, instead of those that its format allows")
      ->group(kGroup);
}

void add_inputs(CLI::App& command, Inputs& inputs) {
  command.add_option("IN", inputs.files, std::string("frames: ") + kWhatFrames)->required()->type_name("FILE");
  add_reading_options(command, inputs.reading);
}

void add_input(CLI::App& command, Inputs& inputs, bool required) {
  command.add_option("IN", inputs.files, std::string("frame: ") + kWhatFrames)
      ->required(required)
      ->expected(required ? 1 : 0, 1)
      ->type_name("FILE");
  add_reading_options(command, inputs.reading);
}

void add_format_option(CLI::App& command, Format& format) {
  static const std::map<std::string, Format> names = {
      {"table", Format::kTable}, {"csv", Format::kCsv}, {"json", Format::kJson}};
  command.add_option("--format", format, "how rows are printed: table (default), csv or json")
      ->transform(CLI::CheckedTransformer(names, CLI::ignore_case).description(""))
      ->type_name("FORMAT");
}

void add_output(CLI::App& command, Output& output, const std::string& description) {
  command.add_option("-o,--output", output.path, description)->required()->type_name("PATH");
}

namespace {

// "dump.raw" and 7 of "dump.raw#7".
std::pair<std::string, std::string> split_name(const std::string& frame) {
  const size_t mark = frame.rfind('#');
  const bool numbered = mark != std::string::npos && mark + 1 < frame.size() &&
                        frame.find_first_not_of("0123456789", mark + 1) == std::string::npos;
  return numbered ? std::pair(frame.substr(0, mark), frame.substr(mark + 1)) : std::pair(frame, std::string());
}

std::filesystem::path stem_of(const std::string& frame) {
  const auto [file, number] = split_name(frame);
  const std::string stem =
      file == kStandardInput ? "stdin" : std::filesystem::path(file).filename().replace_extension().string();
  return number.empty() ? stem : stem + "-" + number;
}

}  // namespace

Outputs::Outputs(const Inputs& inputs, const Output& output, const std::string& ending)
    : path_(output.path), ending_(ending) {
  const bool raw = inputs.reading.reads_raw();
  const std::vector<InputFile> files = expand(inputs.files, raw);
  const bool several = files.size() != 1 || (raw && inputs.reading.raw.count.value_or(1) != 1);
  folder_ = several || !std::filesystem::path(path_).has_filename() || std::filesystem::is_directory(path_);
  if (!folder_) return;
  std::set<std::filesystem::path> taken;
  for (const InputFile& file : files) {
    const std::string number = file.index ? "#" + std::to_string(*file.index) : "";
    if (taken.insert(stem_of(file.path + number)).second) continue;
    throw usage_failure("two inputs would be written to " + path_for(file.path + number));
  }
  make_folder(path_);
}

std::string Outputs::path_for(const std::string& frame) const {
  return folder_ ? (std::filesystem::path(path_) / stem_of(frame)).string() + ending_ : path_;
}

void make_folder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) throw file_failure(path, "cannot be made a folder: " + error.message());
}

}  // namespace quofp
