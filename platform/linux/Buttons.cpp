#include <QCheckBox>
#include <QPushButton>
#include <QShortcut>

#include "platform/Forms.h"
#include "platform/linux/Widgets.h"

namespace platform {

CommandButton::CommandButton(Container& parent, const Design& design)
    : Control(parent, design,
              ::platform::Native(new QPushButton(FromText(design.Caption), Widget(parent)))) {
  auto* button = static_cast<QPushButton*>(Widget(*this));
  button->setAutoDefault(true);  // Enter presses the button that has the focus
  QObject::connect(button, &QPushButton::clicked, [this] {
    if (Click) Click();
  });
}

void CommandButton::Cancel() {
  auto* button = static_cast<QPushButton*>(Widget(*this));
  auto* shortcut = new QShortcut(QKeySequence(Qt::Key_Escape), button->window());
  QObject::connect(shortcut, &QShortcut::activated, button, [button] { button->click(); });
}

CheckBox::CheckBox(Container& parent, const Design& design)
    : Control(parent, design,
              ::platform::Native(new QCheckBox(FromText(design.Caption), Widget(parent)))) {
  QObject::connect(static_cast<QCheckBox*>(Widget(*this)), &QCheckBox::toggled, [this] {
    if (Click) Click();
  });
}

int CheckBox::Value() const { return static_cast<QCheckBox*>(Widget(*this))->isChecked() ? 1 : 0; }
void CheckBox::Value(int value) { static_cast<QCheckBox*>(Widget(*this))->setChecked(value == 1); }

}  // namespace platform
