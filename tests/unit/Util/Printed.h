// What a piece of code writes to standard output, buffered or unbuffered.
#pragma once

#include <gtest/gtest.h>

#include <string>

template <class F>
std::string Printed(F fn) {
  testing::internal::CaptureStdout();
  fn();
  return testing::internal::GetCapturedStdout();
}
