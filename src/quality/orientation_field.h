// Ridge orientations of a half-size frame: Sobel gradients averaged over a square window, as angles in whole degrees.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quo {

/** A half-size frame and the window over which its gradients are averaged. */
struct HalfFrame {
  const uint8_t* pixels;
  int32_t width;
  int32_t height;
  int32_t radius;  // the window reaches this far from its centre on all sides

  // A frame without columns has no rows to walk either, however many it claims.
  HalfFrame(const uint8_t* half, int32_t half_width, int32_t half_height, int32_t window_radius)
      : pixels(half), width(half_width), height(half_width > 0 ? half_height : 0), radius(window_radius) {
    // A radius beyond the frame covers all of it, as the longer side does.
    const int32_t longer = width > height ? width : height;
    radius = radius < 0 ? 0 : radius > longer ? longer : radius;
  }

  size_t row(int32_t y) const { return static_cast<size_t>(y) * static_cast<size_t>(width); }
  /** Gradients exist where all eight neighbours do. */
  bool has_interior() const { return width > 2 && height > 2; }
};

/** Pixels of the largest half frame whose tables have a byte count that fits in 32 bits. */
inline constexpr uint64_t kMostCells = UINT32_MAX / sizeof(uint32_t);

/** Summed-area tables of gradient products, each of the half frame's size: cell (x, y) is the sum over the interior
 *  pixels of columns 1 to x and rows 1 to y, modulo 2^32. The last row and column are not written and not read, nor is
 *  any cell of a frame without interior. */
struct OrientationTables {
  uint32_t* product;     // 2 Gx Gy
  uint32_t* difference;  // Gx^2 - Gy^2
};

void sum_orientation(const HalfFrame& half, const OrientationTables& tables);

/** The table of the horizontal gradient energy, 2 |Gx|. */
void sum_energy(const HalfFrame& half, uint32_t* energy);

/** Number of columns that fit in the row buffers of the callers. */
inline constexpr int32_t kColumnsAtOnce = 1024;

/** Sums of a table over the windows around `count` pixels of row y from column x on, read as signed; pixels outside the
 *  interior count as 0. */
void window_sums(const HalfFrame& half, const uint32_t* table, int32_t x, int32_t y, int32_t count, int32_t* sums);

/** Orientations, 0 to 179 degrees, of `count` pixels of row y from column x on, at most kColumnsAtOnce. */
void orient_pixels(const HalfFrame& half, const OrientationTables& tables, int32_t x, int32_t y, int32_t count,
                   uint8_t* degrees);

}  // namespace quo
