#include "platform/Shell.h"

#include <QDesktopServices>
#include <QUrl>

#include "platform/linux/Widgets.h"

namespace platform {

namespace {

constexpr int Success = 42;  // any number above 32 says so
constexpr int SE_ERR_NOASSOC = 31;

}  // namespace

int ShellExecuteA(std::uint32_t, const std::string& verb, const std::string& target,
                  const std::string&, const std::string&, int) {
  const QUrl address(FromText(target), QUrl::StrictMode);
  if (verb != "open" || !address.isValid() || address.isRelative()) return SE_ERR_NOASSOC;
  return QDesktopServices::openUrl(address) ? Success : SE_ERR_NOASSOC;
}

}  // namespace platform
