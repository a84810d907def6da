/* Loads the library by name while it runs, and rates a frame: load LIBRARY FRAME.pgm */
#include <dlfcn.h>
#include <quoFPAlg.h>

#include "pgm.h"

/* The functions that are used, under the types that the header gives them. */
static int32_t (*version)(void);
static uint32_t (*compute_snr)(const uint8_t *, uint32_t, uint32_t, uint8_t *, uint8_t *, uint8_t *);

static int load(const char *path) {
  void *library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 0;
  }
  /* The cast by way of a pointer is the one that POSIX describes: C has none from objects to functions. */
  *(void **)&version = dlsym(library, "FP_GetVersion");
  *(void **)&compute_snr = dlsym(library, "FP_ComputeSNR");
  return version != NULL && compute_snr != NULL && version() == QUO_VERSION;
}

int main(int argc, char **argv) {
  if (argc != 3) {
    fprintf(stderr, "usage: load LIBRARY FRAME.pgm\n");
    return 2;
  }
  if (!load(argv[1])) return 2;
  frame f = read_pgm(argv[2]);
  uint8_t snr = 0, signal = 0, noise = 0;
  uint32_t result = compute_snr(f.pixels, (uint32_t)f.width, (uint32_t)f.height, &snr, &signal, &noise);
  if (result == QUO_OK) printf("version %d, signal %u, noise %u, ratio %u\n", version(), signal, noise, snr);
  free(f.pixels);
  return result == QUO_OK ? 0 : 1;
}
