#pragma once

namespace platform {

class FormWidget;

// The pile of popups (platform/common/PopupPile.h) on the screen. Their timers run all the same.

void PutOnPile(FormWidget& window);
/// The window is not shown any more; silent when it is not on the pile.
void TakeOffPile(FormWidget& window);

}  // namespace platform
