#include <gtest/gtest.h>

#include "tests/support/Application.h"
#include "tests/support/TemporaryFolder.h"

int main(int argc, char** argv) {
  static const Sandbox sandbox;  // Static: a test of an exit never comes back here.
  testing::InitGoogleTest(&argc, argv);
  const machine::Application application;
  return RUN_ALL_TESTS();
}
