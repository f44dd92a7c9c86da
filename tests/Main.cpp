#include <QByteArray>
#include <gtest/gtest.h>
#ifndef WITHOUT_WINDOWS
#include <QApplication>
#endif

#include "tests/unit/TemporaryFolder.h"

// One region, one zone and no user: what stands in the folders of whoever runs the tests must
// neither change a result nor be changed.
int main(int argc, char** argv) {
  static const TemporaryFolder home;  // Static: a test of an exit never comes back here.
  for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
    qputenv(name, home.Path(name).c_str());
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("LC_ALL", "en_US.UTF-8");
  qputenv("TZ", "UTC");
  testing::InitGoogleTest(&argc, argv);
#ifndef WITHOUT_WINDOWS
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
#endif
  return RUN_ALL_TESTS();
}
