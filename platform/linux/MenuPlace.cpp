#include "platform/linux/MenuPlace.h"

#include <optional>
#include <utility>

#include <QCursor>

namespace platform {

namespace {

std::optional<QPoint> asked;

}  // namespace

MenuPlace::MenuPlace(const QPoint& place) { asked = place; }
MenuPlace::~MenuPlace() { asked.reset(); }

// Once: while the menu is open, a click on the tray can ask for another.
QPoint MenuPlace::Take() { return std::exchange(asked, std::nullopt).value_or(QCursor::pos()); }

}  // namespace platform
