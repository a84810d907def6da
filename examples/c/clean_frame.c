/* Cleans a frame: clean_frame FRAME.pgm CLEANED.pgm */
#include <quoFPAlg.h>

#include "pgm.h"

int main(int argc, char **argv) {
  if (argc != 3) {
    fprintf(stderr, "usage: clean_frame FRAME.pgm CLEANED.pgm\n");
    return 2;
  }
  frame f = read_pgm(argv[1]);

  /* The score is that of the frame as captured, so it comes before the cleaning. */
  uint8_t quality = 0;
  uint32_t result = FP_ImageQuality(f.pixels, f.width, f.height, &quality, NULL, NULL, NULL);
  uint8_t coverage = 30; /* in: percent required; out: percent found */
  if (result == QUO_OK) result = FP_ImagePreproc(f.pixels, f.width, f.height, 0, &coverage, 0);

  if (result == QUO_LOW_COVERAGE) {
    printf("coverage %u %%: touch again\n", coverage);
  } else if (result == QUO_OK) {
    FILE *file = fopen(argv[2], "wb");
    size_t size = (size_t)f.width * (size_t)f.height;
    if (file == NULL || fprintf(file, "P5\n%d %d\n255\n", f.width, f.height) < 0 ||
        fwrite(f.pixels, 1, size, file) != size || fclose(file) != 0) {
      perror(argv[2]);
      return 2;
    }
    printf("coverage %u %%, quality %u\n", coverage, quality);
  }
  free(f.pixels);
  return result == QUO_OK ? 0 : 1;
}
