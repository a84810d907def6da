#include "quality/orientation_field.h"

#include <algorithm>

#include "frame/hooks.h"
#include "quality/ridge_degrees.h"

namespace quo {

namespace {

// The Sobel derivatives around column x + 1 of three neighbouring rows, at most 1020 in size.
inline int16_t horizontal_derivative(const uint8_t* above, const uint8_t* middle, const uint8_t* below, int32_t x) {
  return static_cast<int16_t>((above[x + 2] + 2 * middle[x + 2] + below[x + 2]) -
                              (above[x] + 2 * middle[x] + below[x]));
}

inline int16_t vertical_derivative(const uint8_t* above, const uint8_t* below, int32_t x) {
  return static_cast<int16_t>((below[x] + 2 * below[x + 1] + below[x + 2]) -
                              (above[x] + 2 * above[x + 1] + above[x + 2]));
}

void multiply_gradients(const uint8_t* __restrict above, const uint8_t* __restrict middle,
                        const uint8_t* __restrict below, uint32_t* __restrict product, uint32_t* __restrict difference,
                        int32_t count) {
  for (int32_t x = 0; x < count; x++) {
    const int16_t gx = horizontal_derivative(above, middle, below, x);
    const int16_t gy = vertical_derivative(above, below, x);
    product[x] = static_cast<uint32_t>(2 * (gx * gy));
    difference[x] = static_cast<uint32_t>(gx * gx - gy * gy);
  }
}

void measure_energy(const uint8_t* __restrict above, const uint8_t* __restrict middle, const uint8_t* __restrict below,
                    uint32_t* __restrict energy, int32_t count) {
  for (int32_t x = 0; x < count; x++) {
    const int16_t gx = horizontal_derivative(above, middle, below, x);
    energy[x] = static_cast<uint32_t>(2 * (gx < 0 ? -gx : gx));
  }
}

void clear(uint32_t* cells, int32_t count) {
  for (int32_t x = 0; x < count; x++) cells[x] = 0;
}

// Turns a row of terms into a row of the table.
void accumulate_row(uint32_t* __restrict row, const uint32_t* __restrict above, int32_t count) {
  uint32_t run = 0;
  for (int32_t x = 0; x < count; x++) {
    run += row[x];
    row[x] = run + above[x];
  }
}

// Rows and columns of a table between which a window lies: the cells of `first` are outside, those of `last` inside.
struct Extent {
  int32_t first;
  int32_t last;
};

// The extent of a window around position i of a side of the given size. i + radius may not fit in 32 bits.
Extent window_extent(int32_t i, int32_t radius, int32_t size) {
  return {.first = i > radius ? i - radius - 1 : 0, .last = radius >= size - 1 - i ? size - 2 : i + radius};
}

// Windows that lie inside the table's columns; the pointers are at the cells of the first window's left and right.
void sum_windows(const uint32_t* __restrict top_left, const uint32_t* __restrict top_right,
                 const uint32_t* __restrict bottom_left, const uint32_t* __restrict bottom_right,
                 int32_t* __restrict sums, int32_t count) {
  for (int32_t x = 0; x < count; x++) {
    sums[x] = static_cast<int32_t>(bottom_right[x] - top_right[x] - bottom_left[x] + top_left[x]);
  }
}

}  // namespace

void sum_orientation(const HalfFrame& half, const OrientationTables& tables) {
  if (!half.has_interior()) return;
  clear(tables.product, half.width);
  clear(tables.difference, half.width);
  for (int32_t y = 1; y < half.height - 1; y++) {
    const uint8_t* const middle = half.pixels + half.row(y);
    uint32_t* const product = tables.product + half.row(y);
    uint32_t* const difference = tables.difference + half.row(y);
    product[0] = difference[0] = 0;
    multiply_gradients(middle - half.width, middle, middle + half.width, product + 1, difference + 1, half.width - 2);
    accumulate_row(product + 1, product + 1 - half.width, half.width - 2);
    accumulate_row(difference + 1, difference + 1 - half.width, half.width - 2);
  }
}

void sum_energy(const HalfFrame& half, uint32_t* energy) {
  if (!half.has_interior()) return;
  clear(energy, half.width);
  for (int32_t y = 1; y < half.height - 1; y++) {
    const uint8_t* const middle = half.pixels + half.row(y);
    uint32_t* const row = energy + half.row(y);
    row[0] = 0;
    measure_energy(middle - half.width, middle, middle + half.width, row + 1, half.width - 2);
    accumulate_row(row + 1, row + 1 - half.width, half.width - 2);
  }
}

void window_sums(const HalfFrame& half, const uint32_t* table, int32_t x, int32_t y, int32_t count, int32_t* sums) {
  const Extent rows = window_extent(y, half.radius, half.height);
  if (!half.has_interior()) {
    for (int32_t i = 0; i < count; i++) sums[i] = 0;
    return;
  }
  const uint32_t* const top = table + half.row(rows.first);
  const uint32_t* const bottom = table + half.row(rows.last);
  const auto sum_cut_windows = [&](int32_t from, int32_t to) {
    for (int32_t i = from; i < to; i++) {
      const Extent columns = window_extent(i, half.radius, half.width);
      sum_windows(top + columns.first, top + columns.last, bottom + columns.first, bottom + columns.last, sums + i - x,
                  1);
    }
  };
  const int32_t end = x + count;
  const int32_t whole_begin = std::clamp(half.radius + 1, x, end);
  const int32_t whole_end = std::clamp(half.width - 1 - half.radius, whole_begin, end);
  sum_cut_windows(x, whole_begin);
  const int32_t left = whole_begin - half.radius - 1, right = whole_begin + half.radius;
  if (whole_begin < whole_end) {
    sum_windows(top + left, top + right, bottom + left, bottom + right, sums + whole_begin - x,
                whole_end - whole_begin);
  }
  sum_cut_windows(whole_end, end);
}

void orient_pixels(const HalfFrame& half, const OrientationTables& tables, int32_t x, int32_t y, int32_t count,
                   uint8_t* degrees) {
  int32_t product[kColumnsAtOnce], difference[kColumnsAtOnce];
  window_sums(half, tables.product, x, y, count, product);
  window_sums(half, tables.difference, x, y, count, difference);
  const auto take_degrees = arctangent_is_own() ? take_degrees_where_clear : take_degrees_by_hook;
  take_degrees(product, difference, count, degrees);
}

}  // namespace quo
