// What is to be done before a thread waits for something that may take long. One action for the
// process.
#pragma once

// Lets out what has been printed, and does what was set. Called before every wait that somebody
// else would notice: for a slow device, for a restart. Any thread.
void BeforeWait();

// Sets what is done; null for nothing. Called while no other thread is in BeforeWait.
void SetBeforeWait(void (*pfnAction)(void* pData), void* pData);
