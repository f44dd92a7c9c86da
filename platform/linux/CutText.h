#pragma once

#include <QPoint>
#include <QRect>
#include <QString>
#include <QWidget>

namespace platform {

/// Shows a text as a tooltip for as long as the pointer stays in `place`, as it is and in lines of
/// its own; no text takes away what shows.
void ShowWholeText(const QString& text, const QPoint& global, QWidget& widget, const QRect& place);

}  // namespace platform
