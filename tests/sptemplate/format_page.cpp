// The example in docs/sp-template-format.md is what the library writes.
#include <fstream>
#include <sstream>
#include <string>

#include "sptemplate/records.h"

using namespace quo_test;

namespace {

/** The bytes of every block marked as hex: two-digit numbers up to the first double space of a line. */
std::vector<Bytes> hex_blocks(const std::string& path) {
  std::vector<Bytes> blocks;
  std::ifstream page(path);
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("```")) {
      inside = line == "```hex";
      if (inside) blocks.emplace_back();
    } else if (inside) {
      std::istringstream digits(line.substr(0, line.find("  ")));
      for (unsigned byte = 0; digits >> std::hex >> byte;) blocks.back().push_back(static_cast<uint8_t>(byte));
    }
  }
  return blocks;
}

}  // namespace

TEST(FormatPage, ShowsTheRecordAndTheTemplateOfItsFrame) {
  const Image frame(30, 29, [](int32_t x, int32_t y) { return x == 16 ? 254 : (x + y) / 2 % 2 == 0 ? 60 : 180; });
  const std::vector<Bytes> blocks = hex_blocks(QUO_FORMAT_PAGE);
  ASSERT_EQ(blocks.size(), 2U);
  uint8_t *record = nullptr, *sp_template = nullptr;
  uint32_t size = 0;
  ASSERT_EQ(ExtractSpTemplates(frame.data(), 30, 29, &record, &size), QUO_OK);
  EXPECT_EQ(take(record, size), blocks[0]);
  ASSERT_EQ(FP_ExtractSpTemplates(frame.data(), 30, 29, &sp_template, &size), QUO_OK);
  EXPECT_EQ(take(sp_template, size), blocks[1]);
}
