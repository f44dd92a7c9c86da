#include "platform/linux/OwnAccessible.h"

namespace platform {

namespace {

QAccessibleInterface* MakeInterface(const QString&, QObject* object) {
  auto* own = dynamic_cast<OwnAccessible*>(object);
  return own ? own->NewAccessible() : nullptr;
}

}  // namespace

// The last factory to be installed is asked first; the toolkit's own comes with the application.
OwnAccessible::OwnAccessible() {
  [[maybe_unused]] static const bool installed = (QAccessible::installFactory(MakeInterface), true);
}

void RenewAccessible(QWidget& widget) {
  QAccessible::deleteAccessibleInterface(
      QAccessible::uniqueId(QAccessible::queryAccessibleInterface(&widget)));
}

}  // namespace platform
