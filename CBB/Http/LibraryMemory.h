/* The heap, with a reserve behind it, for the HTTP library. In two places the library uses a
   block without checking it, and it drops a piece of a reply that does not fit. So the smallest
   blocks come from the reserve when memory runs out, and every shortage is noted. The library's
   caller then closes all connections, which also frees memory. Also read as C. Any thread. */
#pragma once

#include <stddef.h> /* NOLINT: also C */

#ifdef __cplusplus
extern "C" {
#endif

/* Like the C library's functions of these names. */
void* ReserveMalloc(size_t nSize);
void* ReserveCalloc(size_t nCount, size_t nSize);
void* ReserveRealloc(void* pBlock, size_t nSize);
void ReserveFree(void* pBlock);

#ifdef __cplusplus
}

/* Notes a shortage that occurred elsewhere. */
void NoteMemoryShortage();

/* Whether memory was short since the last TakeMemoryShortage, which forgets it. */
bool IsMemoryShort();
bool TakeMemoryShortage();

/* Makes the C library give memory back as soon as it can. Called from main, before any thread
   exists. */
void PrepareMemory();

/* Gives free memory back to the system. */
void ReturnMemory();
#endif
