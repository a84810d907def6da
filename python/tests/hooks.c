/* Hooks for the tests, preloaded: they count the blocks that are held, and fail the allocation that a test names. */
#include <stdint.h>
#include <stdlib.h>

int64_t quo_test_allocations; /* asked for so far */
int64_t quo_test_held;        /* not given back yet */
int64_t quo_test_failing = -1; /* number of the allocation that fails, with all later ones; below 0 none */

void *tev_quo_malloc(uint32_t size);
void tev_quo_free(void *block);

void *tev_quo_malloc(uint32_t size) {
  const int64_t number = quo_test_allocations++;
  if (quo_test_failing >= 0 && number >= quo_test_failing) return NULL;
  void *const block = malloc(size);
  if (block != NULL) quo_test_held++;
  return block;
}

void tev_quo_free(void *block) {
  if (block != NULL) quo_test_held--;
  free(block);
}
