#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

// No windows: a region, and a wait, are those of a program that has none.

int main(int argc, char** argv) {
  static const Sandbox sandbox;  // Static: a test of an exit never comes back here.
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
