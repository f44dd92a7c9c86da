#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/Forms.h"

// What tests do to windows as a user would, and see of them: one source a machine.

namespace machine {

/// What windows need, for the length of all tests; they are on no screen.
class Application {
 public:
  Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;
  ~Application();

 private:
  struct Native;
  std::unique_ptr<Native> native_;
};

/// Hands out events until it holds. False when it does not within some seconds.
inline bool WaitFor(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    platform::DoEvents();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

/// What kind of message box is open: MB_OK or MB_YESNO.
std::optional<int> OpenBox();
/// Presses its button: IDOK, IDYES or IDNO.
void PressInBox(int button);

/// Closes the windows of that name by their close boxes. Their titles and texts of many lines.
std::vector<std::string> CloseForms(const std::string& name);

bool IsOnScreen(const platform::Form& form);
bool IsMenuOpen();
/// Counted from 0.
void ChooseEntry(const platform::Menu& menu, int entry);

/// Painting is most of the work of a long test.
void Paint(const platform::Form& form, bool paints);

/// What the process holds. Some of it may come and go by the machine's own will.
struct Held {
  const char* What;
  long Count;
  long Slack;
};
std::vector<Held> HeldNow();
/// In kB. What a heap keeps of freed memory is its slack.
Held MemoryNow();

}  // namespace machine
