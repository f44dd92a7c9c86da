#include "tests/model/Yields.h"

#include <cstdint>

#include "platform/ChangeNotification.h"

// The linker leads the program's yields and waits here.
extern "C" {
void ProgramYields() __asm__("__wrap__ZN8platform8DoEventsEv");
void HandOutEvents() __asm__("__real__ZN8platform8DoEventsEv");
std::uint32_t ProgramWaits(platform::HANDLE handle, std::uint32_t milliseconds) __asm__(
    "__wrap__ZN8platform19WaitForSingleObjectEij");
std::uint32_t Wait(platform::HANDLE handle, std::uint32_t milliseconds) __asm__(
    "__real__ZN8platform19WaitForSingleObjectEij");

void ProgramYields() {
  if (InYield) InYield();
  HandOutEvents();
}

std::uint32_t ProgramWaits(platform::HANDLE handle, std::uint32_t milliseconds) {
  return Wait(handle, InYield ? 0 : milliseconds);
}
}
