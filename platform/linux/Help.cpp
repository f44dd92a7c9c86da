#include <QFileInfo>
#include <QPointer>
#include <QUrl>

#include "platform/Shell.h"
#include "platform/linux/HelpWindow.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

/// The first page of the help that stands for that file: a folder of its name, without the ending.
QString FirstPage(const std::string& path) {
  QString folder = FromText(path);
  const QString ending = ".chm";
  if (!folder.endsWith(ending, Qt::CaseInsensitive)) return {};
  folder.chop(ending.size());
  return folder + "/index.html";
}

}  // namespace

std::uint32_t HtmlHelpA(std::uint32_t, const std::string& path, std::uint32_t command,
                        std::uint32_t) {
  static QPointer<HelpWindow> window;
  const QFileInfo page(FirstPage(path));
  if (command != HH_DISPLAY_TOPIC || !page.isFile() || !page.isReadable()) return 0;
  // A window that was closed just now waits to be freed.
  if (!window || !window->isVisible()) window = new HelpWindow;
  window->Open(QUrl::fromLocalFile(page.absoluteFilePath()));
  return static_cast<std::uint32_t>(window->winId());
}

}  // namespace platform
