#include <QApplication>
#include <gtest/gtest.h>

#include "tests/unit/TemporaryFolder.h"

// One region, one zone and no user: a window reads and writes what belongs to its user, as an
// autostart entry, and that of whoever runs the tests must neither count nor change.
int main(int argc, char** argv) {
  static const TemporaryFolder home;  // Static: a test of an exit never comes back here.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("LC_ALL", "en_US.UTF-8");
  qputenv("TZ", "UTC");
  qputenv("HOME", home.Path("home").c_str());
  qputenv("XDG_CONFIG_HOME", home.Path("config").c_str());
  qputenv("XDG_DATA_HOME", home.Path("data").c_str());
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
