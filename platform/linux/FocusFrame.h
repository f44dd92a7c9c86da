#pragma once

#include <QAbstractScrollArea>
#include <QEvent>

namespace platform {

/// Marks the frame of a list or text while it has the keyboard, as the toolkit does with a box of
/// one line: there may be no row or caret in sight that tells. Wants every event of the area.
void ShowFocusOnFrame(QAbstractScrollArea& area, const QEvent& event);

}  // namespace platform
