// The HTTP library, built for a thread with a stack of 128 KiB.
//
// Pages that include each other nest up to ten levels, each with a buffer of BUFSIZ bytes and two
// of MG_MAX_PATH on the stack: 180 KiB with the C library's sizes. An include's tag is read into
// the first buffer and copied unchecked from there into a path, so BUFSIZ must not exceed
// MG_MAX_PATH.
#include <mongoose.h>

#undef BUFSIZ
#define BUFSIZ 1024
#if BUFSIZ > MG_MAX_PATH
#error "an include's tag may be longer than a path"
#endif

// The room that a growing send buffer gets in advance does not shrink with it.
#undef MBUF_SIZE_MAX_HEADROOM
#define MBUF_SIZE_MAX_HEADROOM 8192

#include <mongoose.c>
