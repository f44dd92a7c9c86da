#include <gtest/gtest.h>
#ifndef WITHOUT_WINDOWS
#include <QApplication>
#endif

#include "tests/support/TemporaryFolder.h"

int main(int argc, char** argv) {
  static const Sandbox sandbox;  // Static: a test of an exit never comes back here.
  testing::InitGoogleTest(&argc, argv);
#ifndef WITHOUT_WINDOWS
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
#endif
  return RUN_ALL_TESTS();
}
