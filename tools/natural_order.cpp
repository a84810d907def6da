#include "natural_order.h"

namespace quofp {

bool in_natural_order(const std::string& a, const std::string& b) {
  const auto digit = [](char c) { return c >= '0' && c <= '9'; };
  size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    if (!digit(a[i]) || !digit(b[j])) {
      if (a[i] != b[j]) return a[i] < b[j];
      i++, j++;
      continue;
    }
    size_t a_end = i, b_end = j;
    while (a_end < a.size() && digit(a[a_end])) a_end++;
    while (b_end < b.size() && digit(b[b_end])) b_end++;
    while (i < a_end - 1 && a[i] == '0') i++;
    while (j < b_end - 1 && b[j] == '0') j++;
    if (a_end - i != b_end - j) return a_end - i < b_end - j;
    const int order = a.compare(i, a_end - i, b, j, b_end - j);
    if (order != 0) return order < 0;
    i = a_end, j = b_end;
  }
  return a.size() - i < b.size() - j;
}

}  // namespace quofp
