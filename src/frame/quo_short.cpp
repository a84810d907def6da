#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>

#include "quoFPAlg.h"

namespace {

constexpr ptrdiff_t kInsertionSize = 24;

bool is_sorted_run(const double* first, const double* last) {
  for (ptrdiff_t i = 1; i < last - first; i++) {
    if (first[i] < first[i - 1]) return false;
  }
  return true;
}

void insertion_sort(double* first, double* last) {
  for (ptrdiff_t i = 1; i < last - first; i++) {
    const double value = first[i];
    ptrdiff_t hole = i;
    for (; hole > 0 && value < first[hole - 1]; hole--) first[hole] = first[hole - 1];
    first[hole] = value;
  }
}

void order(double& a, double& b) {
  if (b < a) std::swap(a, b);
}

// Moves the values below the pivot to the front, without a branch that depends on them; returns the first of the rest.
double* partition_below(double* first, double* last, double pivot) {
  double* border = first;
  for (double* value = first; value < last; value++) {
    const double moved = *value;
    *value = *border;
    *border = moved;
    border += moved < pivot ? 1 : 0;
  }
  return border;
}

// Quicksort around a median of three. A range that does not shrink within the given number of splits goes to a heap, so
// the cost stays n log n for every input.
void quick_sort(double* first, double* last, int splits) {
  while (last - first > kInsertionSize) {
    if (splits-- == 0) {
      std::make_heap(first, last);
      std::sort_heap(first, last);
      return;
    }
    double& middle = first[(last - first) / 2];
    order(*first, middle);
    order(middle, last[-1]);
    order(*first, middle);
    std::swap(middle, last[-1]);
    double* const border = partition_below(first, last - 1, last[-1]);
    std::swap(*border, last[-1]);
    quick_sort(first, border, splits);
    first = border + 1;
  }
  insertion_sort(first, last);
}

// Sorts a run without NaN as the exchange sort would. Doubles that compare equal have the same bits unless they are
// zeros of either sign, and the exchange sort keeps the order of those: they are set aside in their order first.
void sort_run(double* first, double* last) {
  if (last - first < 2 || is_sorted_run(first, last)) return;
  double* zeros_end = first;
  for (double* value = first; value < last; value++) {
    if (*value == 0.0) std::swap(*zeros_end++, *value);
  }
  quick_sort(zeros_end, last, 2 * static_cast<int>(std::bit_width(static_cast<size_t>(last - zeros_end))));
  double* const negatives_end = std::lower_bound(zeros_end, last, 0.0);
  // Negatives before zeros, each in their order: reversed one by one, then together.
  std::reverse(first, zeros_end);
  std::reverse(zeros_end, negatives_end);
  std::reverse(first, negatives_end);
}

}  // namespace

void quo_short(double* values, int32_t count) {
  // A comparison with a NaN is false, so no value ever passes one: the runs between them are sorted on their own.
  double* const end = count > 1 ? values + count : values;
  for (double* first = values; first < end; first++) {
    double* last = first;
    while (last < end && *last == *last) last++;
    sort_run(first, last);
    if (last == end) return;
    first = last;  // the NaN
  }
}
