#include <algorithm>
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
    return queue_x_.allocate(pixels) && queue_y_.allocate(pixels);
  }

  Region grow(ptrdiff_t x, ptrdiff_t y) {
    region_ = {1, x, y, x, y};
    gray_ = image_[y * width_ + x];
    labels_[y * width_ + x] = label_;
    for (const ptrdiff_t row : {y - 1, y, y + 1}) visit(row, x - 1, x + 1);
    for (size_t run = 0; run < runs_; run++) {
      const auto first = static_cast<ptrdiff_t>(queue_x_[2 * run]),
                 last = static_cast<ptrdiff_t>(queue_x_[2 * run + 1]);
      const auto row = static_cast<ptrdiff_t>(queue_y_[run]);
      visit(row - 1, first - 1, last + 1);
      visit(row + 1, first - 1, last + 1);
    }
    return region_;
  }

 private:
  // A row as the loops below see it. Copies of the members, which a store of a label might change for all that the
  // compiler knows.
  struct Row {
    const uint8_t* image;
    uint8_t* labels;
    uint8_t gray;
    uint8_t label;

    bool joins(ptrdiff_t x) const { return labels[x] == 0 && image[x] == gray; }

    // Long runs are looked at and labelled eight pixels at a time.
    bool eight_join(ptrdiff_t x) const {
      return quo::load_eight(labels + x) == 0 && quo::load_eight(image + x) == quo::kEightTimes * gray;
    }
    bool eight_labelled(ptrdiff_t x) const { return !quo::has_zero_byte(quo::load_eight(labels + x)); }
    void label_eight(ptrdiff_t x) const { quo::store_eight(labels + x, quo::kEightTimes * label); }
  };

  // Lets every run of a row join that has a pixel in the given columns.
  void visit(ptrdiff_t y, ptrdiff_t first, ptrdiff_t last) {
    if (y < kFrame || y >= height_ - kFrame) return;
    const Row row{image_ + y * width_, labels_ + y * width_, gray_, label_};
    last = std::min(last, width_ - kFrame - 1);
    for (ptrdiff_t x = std::max(first, kFrame); x <= last; x++) {
      while (x + 7 <= last && row.eight_labelled(x)) x += 8;
      if (x <= last && row.joins(x)) x = add_run(row, x, y) + 1;
    }
  }

  // Labels and queues the run around a pixel. Returns the run's last column.
  ptrdiff_t add_run(const Row row, ptrdiff_t x, ptrdiff_t y) {
    const ptrdiff_t end = width_ - kFrame;
    ptrdiff_t first = x, last = x;
    for (; first - 8 >= kFrame && row.eight_join(first - 8); first -= 8) row.label_eight(first - 8);
    for (; first > kFrame && row.joins(first - 1); first--) row.labels[first - 1] = row.label;
    for (; last + 8 < end && row.eight_join(last + 1); last += 8) row.label_eight(last + 1);
    for (; last + 1 < end && row.joins(last + 1); last++) row.labels[last + 1] = row.label;
    row.labels[x] = row.label;
    region_ = {region_.count + last - first + 1, std::min(region_.min_x, first), std::min(region_.min_y, y),
               std::max(region_.max_x, last), std::max(region_.max_y, y)};
    // Runs of a row are a pixel apart: (width - 3) / 2 of them at most, so two entries each fit in the queue.
    queue_x_[2 * runs_] = static_cast<Coordinate>(first);
    queue_x_[2 * runs_ + 1] = static_cast<Coordinate>(last);
    queue_y_[runs_++] = static_cast<Coordinate>(y);
    return last;
  }

  const uint8_t* image_;
  uint8_t* labels_;
  ptrdiff_t width_;
  ptrdiff_t height_;
  uint8_t label_;
  uint8_t gray_ = 0;
  quo::Scratch<Coordinate> queue_x_;  // of run i the first column at 2 i, the last at 2 i + 1
  quo::Scratch<Coordinate> queue_y_;  // of run i the row at i
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
