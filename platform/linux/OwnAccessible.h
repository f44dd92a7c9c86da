#pragma once

#include <QAccessible>
#include <QWidget>

namespace platform {

/// A widget that has its own word for screen readers where the toolkit's is wrong.
class OwnAccessible {
 public:
  OwnAccessible();
  virtual ~OwnAccessible() = default;
  /// What stands for the widget; none to leave it to the toolkit.
  virtual QAccessibleInterface* NewAccessible() = 0;
};

/// What `NewAccessible` of the widget returns has changed.
void RenewAccessible(QWidget& widget);

}  // namespace platform
