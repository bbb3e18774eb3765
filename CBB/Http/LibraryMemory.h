/* The heap with a reserve behind it, for the HTTP library. It uses what it is given without looking
   in two places, and leaves out a piece of a reply that finds no room; so the smallest blocks come
   from the reserve when there is no other memory, and every shortage is noted. Whoever drives the
   library then closes what is open, which gives memory back, too. Also read as C. Any thread. */
#pragma once

#include <stddef.h> /* NOLINT: also C */

#ifdef __cplusplus
extern "C" {
#endif

/* As the C library's functions of these names. */
void* ReserveMalloc(size_t nSize);
void* ReserveCalloc(size_t nCount, size_t nSize);
void* ReserveRealloc(void* pBlock, size_t nSize);
void ReserveFree(void* pBlock);

#ifdef __cplusplus
}

/* Notes a shortage that was met elsewhere. */
void NoteMemoryShortage();

/* Whether memory was short since the last TakeMemoryShortage, which forgets it. */
bool IsMemoryShort();
bool TakeMemoryShortage();

/* Lets the C library give memory back as soon as it can. Called from main, before any thread
   exists. */
void PrepareMemory();

/* Gives the memory that is free now back to the system. */
void ReturnMemory();
#endif
