// The plain traces on standard output. They are only concatenated, which takes a fraction of
// printf's time: apart from the exchange, traces used to be most of a request's cost.
#pragma once

#include <initializer_list>
#include <string_view>

// Prints the texts one after another, up to 1024 characters in all, never mixed with another
// thread's print. Numbers are passed as std::to_string's text. Any thread.
void Print(std::initializer_list<std::string_view> texts);

// Writes out what has been printed. Called before replies leave and before every long wait
// (BeforeWait), so that the output is up to date then. Otherwise the traces of several requests are
// written together. Any thread.
void FlushPrinted();
