#include "tests/support/Machine.h"

#include <cstdlib>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QTimer>

namespace machine {

namespace fs = std::filesystem;

const char Separator = '/';

fs::path NativePath(const std::string& path) { return path; }
std::string PathText(const fs::path& path) { return path; }

std::string MakeOwnFolder(const fs::path& parent) {
  std::string name = (parent / "unit-XXXXXX").string();
  return std::string(mkdtemp(name.data())) + '/';
}

void RemoveFolder(const std::string& path) {
  std::error_code ignored;
  fs::remove_all(path, ignored);
}

void UseFolder(const std::string& path) {
  UseHome(path + "home");
  setenv("XDG_CONFIG_HOME", (path + "config").c_str(), 1);
  setenv("XDG_DATA_HOME", (path + "data").c_str(), 1);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("LC_ALL", "en_US.UTF-8", 1);
  setenv("TZ", "UTC", 1);
}

void UseHome(const std::string& path) { setenv("HOME", path.c_str(), 1); }

void MakeReadOnly(const std::string& path) { chmod(path.c_str(), 0444); }

void Hide(const std::string&) {}

void TickOnce(int milliseconds, bool& ticked) {
  static int argc = 0;
  static const QCoreApplication application(argc, nullptr);
  QTimer::singleShot(milliseconds, [&ticked] { ticked = true; });
}

void WriteBytesAsTheyAre() {}

}  // namespace machine
