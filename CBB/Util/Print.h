// The plain traces on standard output. Unlike printf they are only put together, which takes a
// fraction of the time: most of what a request costs beyond its exchange were its traces.
#pragma once

#include <initializer_list>
#include <string_view>

// Prints the texts one behind the other, up to 1024 characters in all, without those of another
// thread's print between them. Numbers are handed over as std::to_string makes them. Any thread.
void Print(std::initializer_list<std::string_view> texts);

// Lets out what has been printed. Called before replies leave and before every long wait
// (BeforeWait), as a watcher of the output would notice: else the traces of several requests leave
// together. Any thread.
void FlushPrinted();
