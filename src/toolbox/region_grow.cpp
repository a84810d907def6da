#include <algorithm>
#include <bit>
#include <cstddef>

#include "frame/eight_bytes.h"
#include "frame/scratch.h"
#include "quoFPAlg.h"

namespace {

constexpr ptrdiff_t kFrame = 2;       // outermost rows and columns on each side whose pixels never join
constexpr uint32_t kByteRange = 256;  // columns or rows that a byte can number

struct Region {
  ptrdiff_t count;
  ptrdiff_t min_x, min_y, max_x, max_y;
};

// Grows a region run by run: a run is a row's longest stretch of pixels that join. The order in which pixels join does
// not show in the result, so whole runs are labelled at once, and their neighbours are visited once for the run.
template <typename Coordinate>
class Growth {
 public:
  Growth(const uint8_t* image, uint8_t* labels, ptrdiff_t width, ptrdiff_t height, uint8_t label)
      : image_(image), labels_(labels), width_(width), height_(height), label_(label) {}

  bool allocate() {
    const uint64_t pixels = static_cast<uint64_t>(width_) * static_cast<uint64_t>(height_);
    return runs_x_.allocate(pixels) && runs_y_.allocate(pixels);
  }

  Region grow(ptrdiff_t x, ptrdiff_t y) {
    region_ = {1, x, y, x, y};
    gray_ = image_[y * width_ + x];
    labels_[y * width_ + x] = label_;
    for (const ptrdiff_t row : {y - 1, y, y + 1}) visit(row, x - 1, x + 1);
    while (runs_ > 0) {
      runs_--;
      const auto first = static_cast<ptrdiff_t>(runs_x_[2 * runs_]),
                 last = static_cast<ptrdiff_t>(runs_x_[2 * runs_ + 1]);
      const auto row = static_cast<ptrdiff_t>(runs_y_[runs_]);
      visit(row - 1, first - 1, last + 1);
      visit(row + 1, first - 1, last + 1);
    }
    return region_;
  }

 private:
  // A row as the loops below see it. Copies of the members, which a store of a label might change for all that the
  // compiler knows. Eight pixels are looked at at a time; those past an end of the row are of the rows next to it,
  // which are in the frame as well, and whatever they hold is cut off.
  struct Row {
    const uint8_t* image;
    uint8_t* labels;
    ptrdiff_t end;  // of the columns whose pixels join
    uint8_t gray;
    uint8_t label;

    // Eight pixels of which those that join are 0.
    uint64_t eight_differences(ptrdiff_t x) const {
      return quo::load_eight(labels + x) | (quo::load_eight(image + x) ^ quo::kEightTimes * gray);
    }

    // The first column from x to `last` whose pixel joins. One after `last` if there is none.
    ptrdiff_t find(ptrdiff_t x, ptrdiff_t last) const {
      for (; x <= last; x += 8) {
        const uint64_t joining = quo::zero_bytes(eight_differences(x));
        if (joining != 0) return x + std::countr_zero(joining) / 8;
      }
      return x;
    }

    // The first column of the run that holds a pixel.
    ptrdiff_t run_first(ptrdiff_t x) const {
      for (; x > kFrame; x -= 8) {
        const uint64_t differences = eight_differences(x - 8);
        if (differences != 0) return std::max(x - std::countl_zero(differences) / 8, kFrame);
      }
      return kFrame;
    }

    // One past the last column of the run that holds a pixel.
    ptrdiff_t run_end(ptrdiff_t x) const {
      for (; x < end; x += 8) {
        const uint64_t differences = eight_differences(x);
        if (differences != 0) return std::min(x + std::countr_zero(differences) / 8, end);
      }
      return end;
    }

    void label_run(ptrdiff_t x, ptrdiff_t run_end) const {
      for (; x + 8 <= run_end; x += 8) quo::store_eight(labels + x, quo::kEightTimes * label);
      for (; x < run_end; x++) labels[x] = label;
    }
  };

  // Lets every run of a row join that has a pixel in the given columns.
  void visit(ptrdiff_t y, ptrdiff_t first, ptrdiff_t last) {
    if (y < kFrame || y >= height_ - kFrame) return;
    const Row row{image_ + y * width_, labels_ + y * width_, width_ - kFrame, gray_, label_};
    last = std::min(last, row.end - 1);
    for (ptrdiff_t x = std::max(first, kFrame); (x = row.find(x, last)) <= last;) x = add_run(row, x, y) + 1;
  }

  // Labels a run that holds a pixel, and keeps it for the visit of its neighbours. Returns the column after the run.
  ptrdiff_t add_run(const Row row, ptrdiff_t x, ptrdiff_t y) {
    const ptrdiff_t first = row.run_first(x), end = row.run_end(x);
    row.label_run(first, end);
    region_ = {region_.count + end - first, std::min(region_.min_x, first), std::min(region_.min_y, y),
               std::max(region_.max_x, end - 1), std::max(region_.max_y, y)};
    // Runs of a row are a pixel apart: (width - 3) / 2 of them at most, so two entries each fit.
    runs_x_[2 * runs_] = static_cast<Coordinate>(first);
    runs_x_[2 * runs_ + 1] = static_cast<Coordinate>(end - 1);
    runs_y_[runs_++] = static_cast<Coordinate>(y);
    return end;
  }

  const uint8_t* image_;
  uint8_t* labels_;
  ptrdiff_t width_;
  ptrdiff_t height_;
  uint8_t label_;
  uint8_t gray_ = 0;
  // Runs whose neighbours are still to be visited. The latest is taken first: few wait at a time, so little of the
  // memory is ever touched.
  quo::Scratch<Coordinate> runs_x_;  // of run i the first column at 2 i, the last at 2 i + 1
  quo::Scratch<Coordinate> runs_y_;  // of run i the row at i
  size_t runs_ = 0;
  Region region_{};
};

template <typename Coordinate>
bool grow(Growth<Coordinate>&& growth, ptrdiff_t x, ptrdiff_t y, Region& region) {
  if (!growth.allocate()) return false;
  region = growth.grow(x, y);
  return true;
}

void store(uint32_t* output, ptrdiff_t value) {
  if (output != nullptr) *output = static_cast<uint32_t>(value);
}

}  // namespace

uint32_t RegionGrowByEightNeighbor(int32_t seed_x, int32_t seed_y, uint32_t label, const uint8_t* image, uint32_t width,
                                   uint32_t height, uint8_t* labels, uint32_t* count, uint32_t* min_x, uint32_t* min_y,
                                   uint32_t* max_x, uint32_t* max_y) {
  const auto label_byte = static_cast<uint8_t>(label);
  const bool seed_inside = seed_x >= 0 && static_cast<uint32_t>(seed_x) < width &&  //
                           seed_y >= 0 && static_cast<uint32_t>(seed_y) < height;
  if (label_byte == 0 || !seed_inside || width > INT32_MAX || height > INT32_MAX) return QUO_NO_MEMORY;
  const auto columns = static_cast<ptrdiff_t>(width), rows = static_cast<ptrdiff_t>(height);
  Region region;
  const bool grown = width <= kByteRange && height <= kByteRange
                         ? grow(Growth<uint8_t>(image, labels, columns, rows, label_byte), seed_x, seed_y, region)
                         : grow(Growth<uint32_t>(image, labels, columns, rows, label_byte), seed_x, seed_y, region);
  if (!grown) return QUO_NO_MEMORY;
  store(count, region.count);
  store(min_x, region.min_x);
  store(min_y, region.min_y);
  store(max_x, region.max_x);
  store(max_y, region.max_y);
  return QUO_OK;
}
