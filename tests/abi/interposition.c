/* Loads the library with dlopen, as a service does. The hooks defined here must receive every call; a function of the
 * program that carries the name of one of the library's operators must receive none. */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "quoFPAlg.h"

static unsigned mallocs, frees, logs, strangers;

void *tev_quo_malloc(uint32_t size) {
  mallocs++;
  return malloc(size);
}

void tev_quo_free(void *block) {
  frees++;
  free(block);
}

void tev_quo_log(const char *tag, uint32_t length) { logs += strlen(tag) + 1 == length; }

/* Each of these the preprocessing reaches inside the library. */
void FillBorders(uint8_t *image, int32_t width, int32_t height, uint8_t flags) {
  (void)image, (void)width, (void)height, (void)flags;
  strangers++;
}

uint8_t RemoveVerticalStripes(const uint8_t *source, uint8_t *destination, int32_t width, int32_t height) {
  (void)source, (void)destination, (void)width, (void)height;
  strangers++;
  return 0;
}

double GetEnhanceCoef(const uint8_t *image, uint32_t width, uint32_t height, int32_t target) {
  (void)image, (void)width, (void)height, (void)target;
  strangers++;
  return 0;
}

typedef uint32_t preprocess_function(uint8_t *, int32_t, int32_t, uint8_t, uint8_t *, uint8_t);

int main(int argc, char **argv) {
  if (argc < 2) return 2;
  void *library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  preprocess_function *preprocess = NULL;
  *(void **)&preprocess = dlsym(library, "FP_ImagePreproc");
  void (*own_log)(const char *, uint32_t) = NULL;
  *(void **)&own_log = dlsym(library, "tev_quo_log");
  if (preprocess == NULL || own_log == NULL) return 1;
  own_log(NULL, 0); /* does nothing, with anything */

  static uint8_t frame[64 * 64];
  for (int i = 0; i < 64 * 64; i++) frame[i] = (uint8_t)(90 + (i / 4 % 2) * 20);
  uint32_t result = preprocess(frame, 64, 64, 0, NULL, 15);
  printf("result %u, %u allocations, %u frees, %u log calls, %u calls of strangers\n", result, mallocs, frees, logs,
         strangers);
  dlclose(library);
  return result == 0 && mallocs == 6 && frees == 6 && logs == 5 && strangers == 0 ? 0 : 1;
}
