#include <QComboBox>

#include "platform/Forms.h"
#include "platform/linux/Widgets.h"

namespace platform {

ComboBox::ComboBox(Container& parent, const Design& design, const std::vector<std::string>& items)
    : Control(parent, design, ::platform::Native(new QComboBox(Widget(parent)))) {
  auto* combo = static_cast<QComboBox*>(Widget(*this));
  for (const std::string& item : items) combo->addItem(FromText(item));
  combo->setCurrentIndex(-1);
}

int ComboBox::ListIndex() const { return static_cast<QComboBox*>(Widget(*this))->currentIndex(); }
void ComboBox::ListIndex(int index) {
  static_cast<QComboBox*>(Widget(*this))->setCurrentIndex(index);
}

}  // namespace platform
