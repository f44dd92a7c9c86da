#pragma once

class QWidget;

namespace platform {

/// Brings a window to the front; over it the question that is open, if any, which alone can be used
/// then.
void ComeForward(QWidget& window);

}  // namespace platform
