#include <string_view>
#include <vector>

#include <QMenu>

#include "platform/Forms.h"
#include "platform/linux/Widgets.h"

namespace platform {

Menu::Menu(Container& parent, const char* caption, const std::vector<Entry>& entries)
    : native_(::platform::Native(new QMenu(FromText(caption), Widget(parent)))) {
  auto* menu = static_cast<QMenu*>(Widget(native_));
  for (const Entry& entry : entries) {
    if (std::string_view(entry.Caption) == "-") {
      menu->addSeparator()->setObjectName(entry.Name);
      continue;
    }
    QAction* action = menu->addAction(FromText(entry.Caption));
    action->setObjectName(entry.Name);
    QObject::connect(action, &QAction::triggered, [click = entry.Click] {
      if (click) click();
    });
  }
}

Menu::~Menu() { delete Widget(native_); }

}  // namespace platform
