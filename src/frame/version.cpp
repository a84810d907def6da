#include "quoFPAlg.h"

int32_t FP_GetVersion(void) { return QUO_VERSION; }
