#include "platform/windows/SystemWindows.h"

#include "platform/windows/EventLoop.h"

#include <chrono>
#include <deque>
#include <utility>
#include <vector>

#include "platform/windows/FormWidget.h"
#include "platform/windows/Keyboard.h"

namespace platform {

namespace {

constexpr UINT ActionsWait = WM_APP;

std::deque<std::function<void()>>& Actions() {
  static auto& actions = *new std::deque<std::function<void()>>;
  return actions;
}

LRESULT CALLBACK ActionProcedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message != ActionsWait || Actions().empty()) return DefWindowProcW(window, message, w, l);
  const std::function<void()> action = std::move(Actions().front());
  Actions().pop_front();
  action();
  return 0;
}

HWND ActionWindow() {
  static const HWND window = NewMessageWindow(L"QuillmereActions", ActionProcedure);
  return window;
}

// --- Windows that have closed --------------------------------------------------------------------

int running = 0;

struct ClosedForm {
  std::unique_ptr<Form> Window;
  int Running;  ///< When it closed: the innermost of them has closed it. The watch is always one.
};

std::vector<ClosedForm>& ClosedForms() {
  static auto& forms = *new std::vector<ClosedForm>;
  return forms;
}

bool CanGo(const ClosedForm& closed) {
  const bool ended = closed.Running == 0 || running < closed.Running;
  return ended && WidgetAs<FormWidget>(*closed.Window).ProceduresRunning == 0;
}

void FreeClosedForms() {
  std::vector<ClosedForm>& all = ClosedForms();
  for (std::size_t i = 0; i < all.size();) {
    if (!CanGo(all[i])) {
      ++i;
      continue;
    }
    const ClosedForm going = std::move(all[i]);
    all.erase(all.begin() + static_cast<std::ptrdiff_t>(i));
  }
}

void Dispatch(MSG& message) {
  if (!TranslateKeys(message)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  FreeClosedForms();
}

/// Esc in a box of "Yes" and "No", to which the system gives no such key.
bool AnswersNo(const MSG& message) {
  constexpr int No = 7;
  const HWND box = GetAncestor(message.hwnd, GA_ROOT);
  if (message.message != WM_KEYDOWN || message.wParam != VK_ESCAPE || WidgetOf(box) != nullptr ||
      GetDlgItem(box, No) == nullptr) {
    return false;
  }
  SendMessageW(box, WM_COMMAND, static_cast<WPARAM>(No), 0);
  return true;
}

/// Loops of the system's own (message boxes, menus) hand out events too: keys mean the same there.
LRESULT CALLBACK InForeignLoop(int code, WPARAM w, LPARAM l) {
  if (code == MSGF_DIALOGBOX) {
    const MSG& message = *reinterpret_cast<const MSG*>(l);
    FreeClosedForms();
    if (AnswersNo(message) || TranslateKeys(message)) return 1;
  }
  return CallNextHookEx(nullptr, code, w, l);
}

}  // namespace

namespace {

HWND NewWindow(const wchar_t* name, WNDPROC procedure, HWND parent) {
  WNDCLASSEXW design{};
  design.cbSize = sizeof design;
  design.lpfnWndProc = procedure;
  design.hInstance = Module();
  design.lpszClassName = name;
  RegisterClassExW(&design);
  return CreateWindowExW(0, name, L"", WS_POPUP, 0, 0, 0, 0, parent, nullptr, Module(), nullptr);
}

}  // namespace

HWND NewMessageWindow(const wchar_t* name, WNDPROC procedure) {
  return NewWindow(name, procedure, HWND_MESSAGE);
}

HWND NewHiddenWindow(const wchar_t* name, WNDPROC procedure) {
  return NewWindow(name, procedure, nullptr);
}

Running::Running() { ++running; }
Running::~Running() { --running; }

void Later(std::function<void()> action) {
  Actions().push_back(std::move(action));
  PostMessageW(ActionWindow(), ActionsWait, 0, 0);
}

void FreeLater(std::unique_ptr<Form> form) { ClosedForms().push_back({std::move(form), running}); }

void DoEvents() {
  // To ask the system is dear: an event of the last moment meets the next yield.
  constexpr std::chrono::milliseconds Moment{1};
  static std::chrono::steady_clock::time_point nextLook;
  if (Actions().empty() && std::chrono::steady_clock::now() < nextLook) return;

  // Timers that take longer than their interval would keep it busy for ever.
  constexpr int MostTimers = 20;
  MSG message;
  int timers = 0;
  while (timers < MostTimers && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) return PostQuitMessage(static_cast<int>(message.wParam));
    if (message.message == WM_TIMER) ++timers;
    Dispatch(message);
  }
  nextLook = std::chrono::steady_clock::now() + Moment;
}

void ListenInForeignLoops() {
  SetWindowsHookExW(WH_MSGFILTER, InForeignLoop, nullptr, GetCurrentThreadId());
}

int RunEventLoop() {
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) Dispatch(message);
  return static_cast<int>(message.wParam);
}

}  // namespace platform
