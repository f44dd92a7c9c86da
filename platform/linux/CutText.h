#pragma once

#include <QPoint>
#include <QRect>
#include <QString>
#include <QWidget>

namespace platform {

/// A text as the page of a tooltip: as it is, no markup read out of it, and not as wide as it is
/// long; of a very long one the beginning.
QString ToolTipPage(const QString& text);

/// Shows a text as a tooltip for as long as the pointer stays in `place`; no text takes away what
/// shows.
void ShowWholeText(const QString& text, const QPoint& global, QWidget& widget, const QRect& place);

}  // namespace platform
