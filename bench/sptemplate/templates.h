// Frames that have templates, and what is made of them.
#pragma once

#include "support/sizes.h"

namespace quo_bench {

/** Registers a benchmark for frames whose templates can be decoded, the largest last. */
inline void template_sizes(benchmark::internal::Benchmark* bench) {
  for (const int size : {64, 160, 192}) bench->Args({size, size});
}

/** A block that the library handed out. */
class Block {
 public:
  Block() = default;
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() { tev_quo_free(data_); }
  uint8_t** out() { return &data_; }
  const uint8_t* data() const { return data_; }

 private:
  uint8_t* data_ = nullptr;
};

inline void extract_record(const benchmark::State& state, Block& record) {
  const auto image = frame(state);
  ExtractSpTemplates(image.data(), image.width, image.height, record.out(), nullptr);
}

inline void extract_template(const benchmark::State& state, Block& sp_template) {
  Block record;
  extract_record(state, record);
  EncodeSpTemplates(record.data(), sp_template.out(), nullptr);
}

}  // namespace quo_bench
