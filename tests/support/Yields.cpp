#include "tests/support/Yields.h"

#include <chrono>
#include <cstdint>
#include <thread>

#include "platform/ChangeNotification.h"

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
  if (!InYield) return Wait(handle, milliseconds);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
  std::uint32_t told = Wait(handle, 0);
  while (told == platform::WAIT_TIMEOUT && SignalComes && SignalComes() &&
         std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::microseconds(200));
    told = Wait(handle, 0);
  }
  return told;
}
}
