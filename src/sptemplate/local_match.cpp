#include "quoFPAlg.h"
#include "sptemplate/profile_record.h"

void LocalMatchSpTemplates(const uint8_t* first, const uint8_t* second, uint16_t n, uint32_t* span, uint32_t* equal) {
  const auto dark = [&](uint32_t i) { return first[i] == quo::kDark || second[i] == quo::kDark; };
  uint32_t start = 0, end = n;  // the dark positions furthest apart, end excluded
  while (start < end && !dark(start)) start++;
  while (end > start && !dark(end - 1)) end--;
  if (end - start < 2) end = start;
  uint32_t matches = 0;
  for (uint32_t i = start; i < end; i++) matches += first[i] == second[i];
  *span = end - start;
  *equal = matches;
}
