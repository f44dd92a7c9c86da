#pragma once

namespace platform {

class FormWidget;

// Windows that come up without being asked for, in any number and mostly at one place. Thousands at
// once would stall the desktop, so of those that lie wholly under newer ones only some are really
// on the screen; the others come up when they would be seen. Their timers run all the same.

void PutOnPile(FormWidget& window);
/// The window is not shown any more; silent when it is not on the pile.
void TakeOffPile(FormWidget& window);
void MovedOnPile(const FormWidget& window);

}  // namespace platform
