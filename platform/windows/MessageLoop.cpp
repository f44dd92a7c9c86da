#include "platform/windows/System.h"

#include "platform/Forms.h"

namespace platform {

void DoEvents() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace platform
