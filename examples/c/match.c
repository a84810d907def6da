/* Compares the templates of two frames: match FRAME.pgm FRAME.pgm */
#include <quoFPAlg.h>

#include "pgm.h"

/* The template of a frame, for FP_DeleteSpTemplates(); null for a frame that has none. */
static uint8_t *make_template(const char *path, uint32_t *size) {
  frame f = read_pgm(path);
  uint8_t *made = NULL;
  if (FP_ExtractSpTemplates(f.pixels, (uint32_t)f.width, (uint32_t)f.height, &made, size) != QUO_OK) {
    fprintf(stderr, "%s: too small or too large for a template\n", path);
  }
  free(f.pixels);
  return made;
}

int main(int argc, char **argv) {
  if (argc != 3) {
    fprintf(stderr, "usage: match FRAME.pgm FRAME.pgm\n");
    return 2;
  }
  uint32_t size[2] = {0, 0}, score = 0, result = 1;
  uint8_t *first = make_template(argv[1], &size[0]);
  uint8_t *second = make_template(argv[2], &size[1]);
  if (first != NULL && second != NULL) {
    result = FP_MatchSpTemplates(first, second, &score);
    if (result == QUO_OK) printf("templates of %u and %u bytes, score %u\n", size[0], size[1], score);
  }
  FP_DeleteSpTemplates(&first);
  FP_DeleteSpTemplates(&second);
  return result == QUO_OK ? 0 : 1;
}
