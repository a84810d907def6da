#include "quality/ridge_degrees.h"

#include <cmath>

#include "quoFPAlg.h"

namespace quo {

namespace {

// Half degrees of the doubled angle are degrees of the orientation: what is called a half below.
constexpr double kTurn = 6.2831852;                       // added to negative angles
constexpr double kDegreesPerRadian = 57.295780490442965;  // 9.8e-7 more than 180 / pi
constexpr double kMostHalves = 181.0;                     // above every angle that an arctangent gives

// The averaged vector turns twice as fast as the gradient and the other way round, and the ridge lies across the
// gradient, hence the subtraction.
inline int32_t degrees_of(int32_t halves) { return halves <= 135 ? 135 - halves : 315 - halves; }

// The conversion of the angle as the results are defined. An angle that no arctangent has, which only an interposed
// hook can give, counts as 0.
uint8_t degrees_by_hook(int32_t product, int32_t difference) {
  double angle = tev_quo_atan2(difference, product);
  if (angle < 0.0) angle += kTurn;
  const double halves = angle * kDegreesPerRadian * 0.5 + 0.5;
  return static_cast<uint8_t>(degrees_of(halves > 0.0 && halves < kMostHalves ? static_cast<int32_t>(halves) : 0));
}

// The arctangent of 0 to 1 in halves, within 2.9e-4: C. Hastings, "Approximations for digital computers", 1955, sheet
// 11, within 1e-5 radians.
inline float arctangent_halves(float ratio) {
  constexpr auto kHalves = static_cast<float>(kDegreesPerRadian * 0.5);
  const float square = ratio * ratio;
  return ratio * kHalves *
         (0.9998660F + square * (-0.3302995F + square * (0.1801410F + square * (-0.0851330F + square * 0.0208351F))));
}

// How close to a step between two degrees the approximation decides nothing, in halves. Its error is 2.9e-4 of the
// polynomial, 1.2e-5 of the ratio of two rounded numbers, 4e-5 of the rounded sums up to 180.5, and 4e-6 because kTurn
// and kDegreesPerRadian are not exact; the hook's, after the conversion, is below 1e-12.
constexpr float kUnclear = 1.0F / 1024;

// An angle, or what is left of it to `whole`; without a subtraction in one branch only, so that loops vectorise.
inline float mirror_where(bool condition, float whole, float angle) {
  return (condition ? whole : 0.0F) + (condition ? -angle : angle);
}

constexpr float kNotZero = 1e-30F;  // makes 0 / 0 zero, and is lost beside every other length

// Degrees of every pair, and 1 for those that are too close to a step.
void approximate(const int32_t* __restrict product, const int32_t* __restrict difference, int32_t count,
                 uint8_t* __restrict degrees, uint8_t* __restrict unclear) {
  for (int32_t i = 0; i < count; i++) {
    const auto x = static_cast<float>(product[i]), y = static_cast<float>(difference[i]);
    const float across = std::fabs(x), along = std::fabs(y);
    const float longer = across > along ? across : along, shorter = across > along ? along : across;
    float halves = arctangent_halves(shorter / (longer + kNotZero));
    halves = mirror_where(along > across, 45.0F, halves);
    halves = mirror_where(x < 0.0F, 90.0F, halves);
    halves = mirror_where(y < 0.0F, 180.0F, halves) + 0.5F;
    const auto whole = static_cast<int32_t>(halves);
    const float part = halves - static_cast<float>(whole);
    degrees[i] = static_cast<uint8_t>(degrees_of(whole));
    unclear[i] = static_cast<uint8_t>((part < kUnclear) | (part > 1.0F - kUnclear));
  }
}

}  // namespace

void take_degrees_by_hook(const int32_t* product, const int32_t* difference, int32_t count, uint8_t* degrees) {
  for (int32_t i = 0; i < count; i++) degrees[i] = degrees_by_hook(product[i], difference[i]);
}

void take_degrees_where_clear(const int32_t* product, const int32_t* difference, int32_t count, uint8_t* degrees) {
  uint8_t unclear[kMostPairs];
  approximate(product, difference, count, degrees, unclear);
  for (int32_t i = 0; i < count; i++) {
    if (unclear[i] != 0) degrees[i] = degrees_by_hook(product[i], difference[i]);
  }
}

}  // namespace quo
