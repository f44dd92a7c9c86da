#pragma once

#include "platform/windows/SystemWindows.h"

#include <functional>
#include <memory>

namespace platform {

class Form;

/// Does something after the event under way, and all that is pending already.
void Later(std::function<void()> action);

/// A window for messages alone.
HWND NewMessageWindow(const wchar_t* name, WNDPROC procedure);

/// One that is never shown, and hears what all windows of the desktop are told.
HWND NewHiddenWindow(const wchar_t* name, WNDPROC procedure);

/// Keys mean the same, and closed windows are freed, in loops of the system's own too.
void ListenInForeignLoops();

/// Hands out events until the process is told to end; returns its exit code.
int RunEventLoop();

/// Frees a window that has closed, once what closed it has ended and no procedure of it is running.
void FreeLater(std::unique_ptr<Form> form);

/// A timer's tick, or a procedure of a window, is on the stack for the length of this.
class Running {
 public:
  Running();
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running();
};

}  // namespace platform
