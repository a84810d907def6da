/* Binary PGM files of 8 bits, as small as an example needs. */
#ifndef EXAMPLE_PGM_H
#define EXAMPLE_PGM_H

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

typedef struct frame {
  int32_t width;
  int32_t height;
  uint8_t *pixels; /* for free() */
} frame;

/* Ends the program with a message when the file is not such an image. */
static frame read_pgm(const char *path) {
  frame f = {0, 0, NULL};
  FILE *file = fopen(path, "rb");
  if (file != NULL && fscanf(file, "P5 %5d %5d 255", &f.width, &f.height) == 2 && fgetc(file) != EOF && f.width > 0 &&
      f.height > 0) {
    size_t size = (size_t)f.width * (size_t)f.height;
    f.pixels = malloc(size);
    if (f.pixels != NULL && fread(f.pixels, 1, size, file) == size) {
      fclose(file);
      return f;
    }
  }
  fprintf(stderr, "%s: not a PGM file of type P5 with 255 levels\n", path);
  exit(2);
}

#endif
