#include "platform/Shell.h"

#include <fcntl.h>
#include <unistd.h>

#include <QDesktopServices>
#include <QUrl>

#include "platform/linux/Descriptor.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

constexpr int Success = 42;  // any number above 32 says so
constexpr int SE_ERR_NOASSOC = 31;

/// Makes a folder the working folder for a while. Whatever is started meanwhile keeps it.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::string& folder)
      : before_(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)),
        changed_(before_ && chdir(folder.c_str()) == 0) {}
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder() {
    if (changed_) {
      [[maybe_unused]] const int back = fchdir(before_.Number());
    }
  }

 private:
  Descriptor before_;
  bool changed_;
};

}  // namespace

int ShellExecuteA(std::uint32_t, const std::string& verb, const std::string& target,
                  const std::string&, const std::string& folder, int) {
  const QUrl address(FromText(target), QUrl::StrictMode);
  if (verb != "open" || !address.isValid() || address.isRelative()) return SE_ERR_NOASSOC;
  const WorkingFolder working(folder);
  return QDesktopServices::openUrl(address) ? Success : SE_ERR_NOASSOC;
}

}  // namespace platform
