// quofp gain: the DAC value that brings the finger's mean gray to a target, and both settings decoded.
#include <array>
#include <cstdio>
#include <iostream>
#include <optional>

#include "commands.h"
#include "inputs.h"
#include "quoFPAlg.h"
#include "table.h"

namespace quofp {
namespace {

using Packed = std::array<uint8_t, 3>;

struct Options {
  Inputs inputs;
  Packed settings{};
  int32_t target = 0;
  int32_t mode = 0;
  std::optional<int32_t> mean;
  Format format = Format::kTable;
};

// Three bytes as six hexadecimal digits.
std::optional<Packed> parse_settings(const std::string& text) {
  if (text.size() != 6 || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) return std::nullopt;
  const unsigned long bytes = std::stoul(text, nullptr, 16);
  return Packed{static_cast<uint8_t>(bytes >> 16), static_cast<uint8_t>(bytes >> 8), static_cast<uint8_t>(bytes)};
}

std::string format_settings(const Packed& packed) {
  char text[7];
  std::snprintf(text, sizeof text, "%02X%02X%02X", unsigned{packed[0]}, unsigned{packed[1]}, unsigned{packed[2]});
  return text;
}

void define(CLI::App& command, Options& options) {
  add_input(command, options.inputs, false);
  command
      .add_option_function<std::string>(
          "--settings",
          [&options](const std::string& text) {
            const std::optional<Packed> settings = parse_settings(text);
            if (!settings) throw CLI::ValidationError("--settings", "'" + text + "' is not six hexadecimal digits");
            options.settings = *settings;
          },
          "the three bytes of the present settings, for example 5AF340")
      ->required()
      ->type_name("HEX");
  const auto number = [&command](const char* name, int32_t& value, int32_t high, const std::string& description) {
    command.add_option(name, value, description + " (0 to " + std::to_string(high) + ")")
        ->check(CLI::Range(0, high).description(""))
        ->required()
        ->type_name("N");
  };
  number("--target", options.target, 255, "wanted mean gray");
  number("--mode", options.mode, INT32_MAX, "kind of sensor");
  command.add_option("--mean", options.mean, "mean gray of the finger, instead of a frame (0 to 255)")
      ->check(CLI::Range(0, 255).description(""))
      ->type_name("N");
  add_format_option(command, options.format);
}

// The gain that each index of a stage stands for.
constexpr double kFirstStage[] = {1, 2, 4, 5.6, 7, 8, 11.3, 14};
constexpr double kLaterStages[] = {1, 2, 3, 4};
constexpr double kGrayPerStep = 0.145;  // at a gain of 1

bool has_short_layout(int32_t mode) { return mode == 2 || mode == 3; }
bool dac_raises_mean(int32_t mode) { return mode == 1 || mode == 2; }

quo_gain_settings decode(const Packed& packed, bool short_layout) {
  const uint32_t first = packed[0], second = packed[1];
  const auto bits = [](uint32_t byte, uint32_t shift, uint32_t mask) {
    return static_cast<uint8_t>(byte >> shift & mask);
  };
  if (short_layout) return {0, bits(first, 0, 7), bits(first, 3, 3), 0, packed[2]};
  return {bits(first, 0, 7), bits(first, 3, 7), bits(first, 6, 3), bits(second, 0, 3), packed[2]};
}

double gain_of(const quo_gain_settings& settings) {
  return kFirstStage[settings.first_stage] * kLaterStages[settings.second_stage] * kLaterStages[settings.third_stage];
}

std::vector<Cell> row_of(const std::string& name, const Packed& packed, const quo_gain_settings& settings,
                         double mean) {
  return {name,
          format_settings(packed),
          settings.carried,
          settings.first_stage,
          kFirstStage[settings.first_stage],
          settings.second_stage,
          kLaterStages[settings.second_stage],
          settings.third_stage,
          kLaterStages[settings.third_stage],
          settings.dac,
          mean};
}

// The mean that was given, or that of the finger in the frame.
uint8_t finger_mean(const Options& options) {
  if (options.mean) return static_cast<uint8_t>(*options.mean);
  const Frame frame = options.inputs.read_only();
  uint8_t mean = 0;
  check_result(frame.name, "tev_GetFingerMean",
               tev_GetFingerMean(frame.data(), frame.width, frame.height, &mean, nullptr));
  return mean;
}

Exit run(const Options& options) {
  if (options.inputs.files.empty() != options.mean.has_value()) throw usage_failure("gain needs a frame or --mean");
  const uint8_t mean = finger_mean(options);
  const std::string source = options.mean ? "--mean" : options.inputs.files[0];
  Packed changed{};
  const uint32_t result = tev_AutoGainDacp(nullptr, 0, 0, &mean, options.settings.data(), changed.data(),
                                           static_cast<uint8_t>(options.target), static_cast<uint32_t>(options.mode));
  if (result == QUO_NO_FINGER) {
    throw refusal(source, "tev_AutoGainDacp", result,
                  "no finger: its mean gray is " + std::to_string(mean) + ", more than 220");
  }
  check_result(source, "tev_AutoGainDacp", result);

  const quo_gain_settings before = decode(options.settings, has_short_layout(options.mode));
  const quo_gain_settings after = decode(changed, false);
  const int direction = dac_raises_mean(options.mode) ? 1 : -1;
  const double change = direction * (after.dac - before.dac) * gain_of(after) * kGrayPerStep;
  Table table({{"settings"},
               {"bytes"},
               {"carried"},
               {"first_stage"},
               {"first_gain", 1},
               {"second_stage"},
               {"second_gain", 0},
               {"third_stage"},
               {"third_gain", 0},
               {"dac"},
               {"mean", 1}});
  table.add(row_of("old", options.settings, before, mean));
  table.add(row_of("new", changed, after, mean + change));
  table.print(std::cout, options.format);
  return Exit::kDone;
}

}  // namespace

void add_gain(Commands& commands) {
  commands.add<Options>(
      {.name = "gain",
       .summary = "The DAC setting that brings a finger to a target gray",
       .examples = {"quofp gain frame.png --settings 5AF340 --target 120 --mode 1",
                    "quofp gain --mean 140 --settings 5AF340 --target 120 --mode 0"},
       .details =
           "Rows: the settings before and after. Columns: bytes, the settings packed; carried, bits that are handed\n"
           "through; first_stage to third_stage, the gain indices, and the gain that each stands for; dac, the DAC\n"
           "value; mean, the finger's mean gray, before as measured, after as the DAC is expected to move it.\n"
           "In modes 1 and 2 the mean rises with the DAC value, in all others it falls. In modes 2 and 3 the present\n"
           "settings have a layout without third stage; the new bytes have the layout of the other modes."},
      define, run);
}

}  // namespace quofp
