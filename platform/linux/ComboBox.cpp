#include <QComboBox>
#include <QLabel>

#include "platform/Forms.h"
#include "platform/linux/Widgets.h"

namespace platform {

ComboBox::ComboBox(Container& parent, const Design& design, const std::vector<std::string>& items)
    : Control(parent, design, ::platform::Native(new QComboBox(Widget(parent)))) {
  auto* combo = static_cast<QComboBox*>(Widget(*this));
  for (const std::string& item : items) combo->addItem(FromText(item));
  combo->setCurrentIndex(-1);
  // To the toolkit its name is what is chosen, and what it is called stands in a label.
  auto* label = new QLabel(FromText(design.AccessibleName), Widget(parent));
  label->hide();
  label->setBuddy(combo);
}

int ComboBox::ListIndex() const { return static_cast<QComboBox*>(Widget(*this))->currentIndex(); }
void ComboBox::ListIndex(int index) {
  static_cast<QComboBox*>(Widget(*this))->setCurrentIndex(index);
}

}  // namespace platform
