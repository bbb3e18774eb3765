// The forward table's data, in the read-only part of the program.
#include "encoding/gbk_table.h"

extern const stGbkCode kGbkTable[] = {
#include "encoding/gbk_table.inc"
};

static_assert(kGbkCodes == 32016);
static_assert(sizeof(kGbkTable) == kGbkCodes * sizeof(stGbkCode));
