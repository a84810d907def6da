// quofp synth: frames of fingers that do not exist.
#include <filesystem>
#include <fstream>
#include <map>

#include "commands.h"
#include "inputs.h"
#include "ordered_workers.h"
#include "synth/sensor.h"

namespace quofp {
namespace {

struct Options {
  synth::Finger finger;
  synth::Sensor sensor;
  std::optional<Size> size;
  std::optional<uint64_t> sensor_seed;
  std::optional<uint64_t> noise_seed;
  int32_t count = 1;
  std::string output;
};

const std::map<std::string, synth::Pattern>& patterns() {
  static const std::map<std::string, synth::Pattern> names = {{"arch", synth::Pattern::kArch},
                                                              {"left-loop", synth::Pattern::kLeftLoop},
                                                              {"right-loop", synth::Pattern::kRightLoop},
                                                              {"whorl", synth::Pattern::kWhorl},
                                                              {"twin-loop", synth::Pattern::kTwinLoop}};
  return names;
}

void define_finger(CLI::App& command, synth::Finger& finger) {
  const auto number = [&command](const char* name, int32_t& value, int32_t low, int32_t high, const char* description) {
    add_number_option(command, name, value, low, high, description)->group("Finger");
  };
  command.add_option("--seed", finger.seed, "number of the finger: the same number, the same finger [1]")
      ->type_name("N")
      ->group("Finger");
  command
      .add_option_function<std::string>(
          "--pattern", [&finger](const std::string& name) { finger.pattern = patterns().at(name); },
          "arch, left-loop, right-loop, whorl or twin-loop; by default chosen by the seed")
      ->check(CLI::IsMember(patterns()).description(""))
      ->type_name("NAME")
      ->group("Finger");
  number("--ridge-period", finger.ridge_period, synth::kMinRidgePeriod, synth::kMaxRidgePeriod,
         "pixels from ridge to ridge");
  number("--coverage", finger.coverage, 0, 100, "percent of the frame under the finger");
  number("--contrast", finger.contrast, 0, 200, "percent; 20 is low");
  number("--bubbles", finger.bubbles, 0, 1000, "air bubbles under the finger");
  number("--shift-x", finger.shift_x, -synth::kMaxShift, synth::kMaxShift, "pixels to the right");
  number("--shift-y", finger.shift_y, -synth::kMaxShift, synth::kMaxShift, "pixels down");
}

void define_sensor(CLI::App& command, Options& options) {
  synth::Sensor& sensor = options.sensor;
  const auto number = [&command](const char* name, int32_t& value, int32_t low, int32_t high, const char* description) {
    add_number_option(command, name, value, low, high, description)->group("Sensor");
  };
  const auto seed = [&command](const char* name, std::optional<uint64_t>& value, const char* description) {
    command.add_option(name, value, description)->type_name("N")->group("Sensor");
  };
  add_size_option(command, "--size", options.size, "size of the frame [160x160]")->group("Sensor");
  number("--background", sensor.background, 0, 255,
         "gray of the uncovered sensor; at 255 it is saturated, without noise");
  number("--noise", sensor.noise, 0, 100, "standard deviation in gray levels");
  seed("--noise-seed", options.noise_seed, "number of the exposure [that of the finger]");
  seed("--sensor-seed", options.sensor_seed, "number of the sensor with its defects [that of the finger]");
  number("--stripes", sensor.stripes, 0, 100, "largest offset of a column in gray levels");
  number("--bad-rows", sensor.bad_rows, 0, 1000, "rows stuck near black or white");
  number("--bad-columns", sensor.bad_columns, 0, 1000, "columns stuck near black or white");
  number("--bad-clusters", sensor.bad_clusters, 0, 1000, "groups of dead pixels");
}

void define(CLI::App& command, Options& options) {
  command
      .add_option("-o,--output", options.output,
                  "the frame (.png, .pgm or .raw), or with --count a folder or one .raw file")
      ->required()
      ->type_name("FILE");
  add_number_option(command, "--count", options.count, 1, 1000000, "number of fingers, with consecutive seeds");
  define_finger(command, options.finger);
  define_sensor(command, options);
}

Frame make_frame(const Options& options, int32_t number) {
  const uint64_t seed = options.finger.seed + static_cast<uint64_t>(number);
  synth::Finger finger = options.finger;
  synth::Sensor sensor = options.sensor;
  finger.seed = seed;
  sensor.seed = options.sensor_seed.value_or(seed);
  sensor.noise_seed = options.noise_seed.value_or(seed);
  sensor.size = options.size.value_or(sensor.size);
  return synth::capture(finger, sensor);
}

// Makes all frames, several at a time, and hands them over in their order.
void make_frames(const Options& options, const std::function<void(const Frame&)>& write) {
  const size_t threads = std::max(1U, std::thread::hardware_concurrency());
  OrderedWorkers<int32_t, Frame> workers(
      threads, 2 * threads, [&](int32_t number) { return make_frame(options, number); }, write);
  for (int32_t i = 0; i < options.count; i++) workers.give(i);
  workers.finish();
}

// One after the other, as a sensor would dump them.
void write_dump(const Options& options) {
  std::ofstream file(options.output, std::ios::binary);
  const auto check = [&] {
    if (!file) throw file_failure(options.output, "cannot be written");
  };
  check();
  make_frames(options, [&](const Frame& frame) {
    file.write(reinterpret_cast<const char*>(frame.data()), static_cast<std::streamsize>(frame.pixels.size()));
    check();
  });
  file.close();
  check();
}

void write_folder(const Options& options) {
  make_folder(options.output);
  const std::filesystem::path folder = options.output;
  uint64_t seed = options.finger.seed;
  make_frames(options, [&](const Frame& frame) {
    write_frame((folder / ("finger-" + std::to_string(seed++) + ".png")).string(), frame);
  });
}

Exit run(const Options& options) {
  if (options.count == 1) {
    write_frame(options.output, make_frame(options, 0));
  } else if (is_raw_name(options.output)) {
    write_dump(options);
  } else {
    write_folder(options);
  }
  return Exit::kDone;
}

}  // namespace

void add_synth(Commands& commands) {
  commands.add<Options>({.name = "synth",
                         .summary = "Writes frames of fingers that do not exist",
                         .examples = {"quofp synth -o finger.png",
                                      "quofp synth -o again.png --noise-seed 7          # the same finger once more",
                                      "quofp synth -o bad.png --stripes 12 --bad-rows 2 --bad-clusters 5",
                                      "quofp synth -o blank.png --coverage 0 --background 240",
                                      "quofp synth -o lot/ --count 200 --size 192x192",
                                      "quofp synth -o dump.raw --count 200               # one after the other"},
                         .details = "The same options give the same pixels on every machine."},
                        define, run);
}

}  // namespace quofp
