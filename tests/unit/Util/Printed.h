// What a piece of code writes to the standard output, buffered and unbuffered alike.
#ifndef TESTS_UNIT_UTIL_PRINTED_H_
#define TESTS_UNIT_UTIL_PRINTED_H_

#include <gtest/gtest.h>

#include <string>

template <class F>
std::string Printed(F fn) {
  testing::internal::CaptureStdout();
  fn();
  return testing::internal::GetCapturedStdout();
}

#endif  // TESTS_UNIT_UTIL_PRINTED_H_
