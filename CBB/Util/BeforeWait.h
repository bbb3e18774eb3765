// What to do before a thread waits for something that may take long. One action per process.
#pragma once

// Flushes the plain traces and runs the action. Called before every wait that others would notice:
// for a slow device, for a restart. Any thread.
void BeforeWait();

// Sets the action; null for none. Called while no other thread is in BeforeWait.
void SetBeforeWait(void (*pfnAction)(void* pData), void* pData);
