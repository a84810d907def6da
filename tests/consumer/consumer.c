#include <quoFPAlg.h>
#include <stdio.h>

int main(void) {
  uint8_t pixels[8] = {7, 7, 7, 0, 0, 0, 0, 0};
  uint32_t histogram[256];
  if (CalcHistogram(pixels, 8, histogram, 256) != 1 || histogram[7] != 3) return 1;
  printf("version %d\n", (int)FP_GetVersion());
  return FP_GetVersion() == QUO_VERSION ? 0 : 1;
}
