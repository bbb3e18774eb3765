// The levelled debug print, the service's main trace, with its timing and hex-dump helpers.
//
// A message of level L prints when printing is enabled, the threshold is at most L and at most 4.
// The process starts enabled at threshold 1. Settings and timing marks are plain variables of the
// process: set them from one thread. Printing may happen on any thread.
#pragma once

#include <sys/time.h>

#include <cstdint>

// Prints a message of level nLevel after everything printed before, with one unbuffered write to
// standard output, so that the messages of two threads never mix. At most 1023 bytes; longer
// messages are cut.
void DebugPrint(int nLevel, const char* pszFormat, ...) __attribute__((format(printf, 2, 3)));

// Moves the threshold one step down (not below 0), if enabled, and prints the settings.
void DebugLower();
// Moves the threshold one step up (5 at most, which silences DebugPrint), if enabled, and prints
// the settings.
void DebugRaise();

// Sets the threshold. A level outside 0 to 4 is ignored.
void SetDebugLevel(int nLevel);
// Returns the threshold, 0 to 5.
int GetDebugLevel();

// Stores the enable flag. Enabling (any value but 0) sets the threshold to 0, disabling to 4.
void SetDebugEnable(uint8_t ucEnable);

// Prints "<HEX:label>(length)-[" and nLen bytes as "%02x " and "]" when enabled and the threshold
// is at most nLevel. Prints nothing for a null label or pointer or a length below 1.
void DebugHex(int nLevel, const char* pszLabel, const void* pData, int nLen);

// Store the time of day in the start mark and in the end mark.
void MarkStart();
void MarkEnd();
// Prints the time from the start mark to the end mark, as PrintDuration does.
void PrintRunTime();
// Prints "DEBUG::run time duration : %ds+%dms\n", or a time error when the end's seconds lie before
// the start's.
void PrintDuration(const timeval& start, const timeval& end);

// Returns the current local time as ctime writes it, line end included; valid until the calling
// thread's next call.
const char* CurTimeText();
