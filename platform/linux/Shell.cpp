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
  // That there is no browser or mail program is the caller's result and no news for the terminal.
  const QtMessageHandler before =
      qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  const bool opened = QDesktopServices::openUrl(address);
  qInstallMessageHandler(before);
  return opened ? Success : SE_ERR_NOASSOC;
}

}  // namespace platform
