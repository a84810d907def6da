#include "cleaning.h"

#include <CLI/CLI.hpp>
#include <map>

#include "failure.h"
#include "inputs.h"
#include "quoFPAlg.h"

namespace quofp {
namespace {

constexpr int32_t kTargetSpread = 100;  // of FP_ImagePreproc_Step2
constexpr unsigned kAllBorders = QUO_BORDER_TOP | QUO_BORDER_BOTTOM | QUO_BORDER_LEFT | QUO_BORDER_RIGHT;

const std::map<std::string, unsigned>& border_flags() {
  static const std::map<std::string, unsigned> flags = {
      {"top", QUO_BORDER_TOP}, {"bottom", QUO_BORDER_BOTTOM}, {"left", QUO_BORDER_LEFT}, {"right", QUO_BORDER_RIGHT}};
  return flags;
}

// "top,left" as a sum of flags.
uint8_t parse_borders(const std::string& list) {
  unsigned sum = 0;
  for (const std::string& name : CLI::detail::split(list, ',')) {
    if (name == "all") {
      sum = kAllBorders;
      continue;
    }
    const auto flag = border_flags().find(name);
    if (flag == border_flags().end()) {
      throw CLI::ValidationError("--borders", "'" + name + "' is not top, bottom, left, right or all");
    }
    sum |= flag->second;
  }
  return static_cast<uint8_t>(sum);
}

void remove_stripes(Frame& frame) {
  if (RemoveVerticalStripes(frame.data(), frame.data(), frame.width, frame.height) == 1) return;
  throw Failure(Exit::kRefused, frame.name + ": RemoveVerticalStripes returned 0: a buffer could not be allocated");
}

// Borders, coverage and stripes.
void run_first_step(Frame& frame, const Cleaning& cleaning, Findings& findings) {
  auto area = static_cast<uint8_t>(cleaning.min_coverage);
  const uint32_t code = FP_ImagePreproc_Step1(frame.data(), frame.width, frame.height,
                                              static_cast<uint8_t>(cleaning.background), &area, cleaning.borders);
  findings.coverage = area;
  if (code == QUO_LOW_COVERAGE) {
    throw refusal(frame.name, "FP_ImagePreproc_Step1", code,
                  std::string(result_meaning(code)) + " (" + std::to_string(area) + " %, required " +
                      std::to_string(cleaning.min_coverage) + " %)");
  }
  check_result(frame.name, "FP_ImagePreproc_Step1", code);
}

void balance(Frame& frame, const Cleaning& cleaning, Findings& findings) {
  const double coefficient = GetEnhanceCoef(frame.data(), static_cast<uint32_t>(frame.width),
                                            static_cast<uint32_t>(frame.height), kTargetSpread);
  findings.gain = static_cast<int32_t>(coefficient);  // at most 100.5
  if (cleaning.slice_rows == 0) {
    check_result(frame.name, "FP_ImagePreproc_Step2", FP_ImagePreproc_Step2(frame.data(), frame.width, frame.height));
  } else {
    check_result(frame.name, "FP_ImageEnhance_Slice",
                 FP_ImageEnhance_Slice(frame.data(), frame.width, frame.height, cleaning.slice_rows, kTargetSpread));
  }
}

}  // namespace

void add_border_option(CLI::App& command, Cleaning& cleaning) {
  command
      .add_option_function<std::string>(
          "--borders", [&cleaning](const std::string& list) { cleaning.borders = parse_borders(list); },
          "border lines to replace: top,bottom,left,right or all [none]")
      ->type_name("LIST");
}

void add_coverage_options(CLI::App& command, Cleaning& cleaning) {
  add_number_option(command, "--background", cleaning.background, 0, 255, "background value; 0 estimates it");
  add_number_option(command, "--min-coverage", cleaning.min_coverage, 0, 100,
                    "percent of the frame that the finger must cover, with all stages");
  add_border_option(command, cleaning);
}

void add_cleaning_options(CLI::App& command, Cleaning& cleaning) {
  static const std::map<std::string, Stage> stages = {
      {"borders", Stage::kBorders}, {"stripes", Stage::kStripes}, {"balance", Stage::kBalance}, {"all", Stage::kAll}};
  command
      .add_option_function<std::string>(
          "--stage", [&cleaning](const std::string& name) { cleaning.stage = stages.at(name); },
          "borders, stripes, balance alone, or all [all]")
      ->check(CLI::IsMember(stages).description(""))
      ->type_name("NAME");
  add_coverage_options(command, cleaning);
  add_number_option(command, "--slice-rows", cleaning.slice_rows, 0, kMaxSide,
                    "rows balanced at a time, to bound the memory; 0 for all");
}

std::vector<std::string> border_names(uint8_t flags) {
  std::vector<std::string> names;
  for (const auto& [name, flag] : border_flags()) {
    if ((flags & flag) != 0) names.push_back(name);
  }
  return names;
}

void check(const Cleaning& cleaning) {
  if (cleaning.stage == Stage::kBorders && cleaning.borders == 0) {
    throw usage_failure("--stage borders needs --borders");
  }
  if (cleaning.stage != Stage::kAll && cleaning.min_coverage != 0) {
    throw usage_failure("--min-coverage goes with all stages only");
  }
}

Findings measure(const Frame& frame, const Cleaning& cleaning) {
  auto background = static_cast<uint8_t>(cleaning.background);
  if (background == 0) {
    check_result(frame.name, "FP_GetImageBgValue",
                 FP_GetImageBgValue(frame.data(), frame.width, frame.height, &background));
  }
  uint8_t coverage = 0;
  check_result(frame.name, "FP_GetValidArea",
               FP_GetValidArea(frame.data(), frame.width, frame.height, background, &coverage, nullptr));
  return {background, coverage, std::nullopt};
}

void clean(Frame& frame, const Cleaning& cleaning, Findings& findings) {
  switch (cleaning.stage) {
    case Stage::kBorders:
      FillBorders(frame.data(), frame.width, frame.height, cleaning.borders);
      break;
    case Stage::kStripes:
      remove_stripes(frame);
      break;
    case Stage::kBalance:
      balance(frame, cleaning, findings);
      break;
    case Stage::kAll:
      run_first_step(frame, cleaning, findings);
      balance(frame, cleaning, findings);
      break;
  }
}

}  // namespace quofp
