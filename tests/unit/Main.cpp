#include <cstdlib>

#include <gtest/gtest.h>

#include "tests/unit/TemporaryFolder.h"

// One region, one zone and no user: what stands in the folders of whoever runs the tests must
// neither change a result nor be changed.
int main(int argc, char** argv) {
  static const TemporaryFolder home;  // Static: a test of an exit never comes back here.
  setenv("LC_ALL", "en_US.UTF-8", 1);
  setenv("TZ", "UTC", 1);
  setenv("HOME", home.Path("home").c_str(), 1);
  setenv("XDG_CONFIG_HOME", home.Path("config").c_str(), 1);
  setenv("XDG_DATA_HOME", home.Path("data").c_str(), 1);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
