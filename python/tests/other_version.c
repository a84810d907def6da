/* Stands for a library of another version. */
#include <stdint.h>

int32_t FP_GetVersion(void);
int32_t FP_GetVersion(void) { return 74; }
