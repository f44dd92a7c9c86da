#include "platform/windows/SystemWindows.h"

#include "tests/support/Application.h"

#include <cstdio>
#include <psapi.h>
#include <tlhelp32.h>
#include <winternl.h>

#include "platform/windows/EventLoop.h"
#include "platform/windows/FormWidget.h"
#include "platform/windows/MenuWidget.h"
#include "platform/windows/SystemHandle.h"

namespace machine {

namespace {

using platform::FormWidget;

/// The system's own dialog, which boxes are; there is one at a time. One that was answered is
/// hidden.
HWND Box() {
  HWND found = nullptr;
  const auto look = [](HWND window, LPARAM to) -> BOOL {
    wchar_t name[8]{};
    GetClassNameW(window, name, 8);
    if (IsWindowVisible(window) && std::wstring_view(name) == L"#32770")
      *reinterpret_cast<HWND*>(to) = window;
    return TRUE;
  };
  EnumThreadWindows(GetCurrentThreadId(), look, reinterpret_cast<LPARAM>(&found));
  return found;
}

std::string TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(
      static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  std::erase(text, L'\r');
  return platform::Narrow(text);
}

/// What a window shows in its text of many lines.
std::string LinesIn(HWND window) {
  std::string lines;
  const auto look = [](HWND control, LPARAM to) -> BOOL {
    wchar_t name[8]{};
    GetClassNameW(control, name, 8);
    const bool text = std::wstring_view(name) == L"Edit";
    if (text && (GetWindowLongW(control, GWL_STYLE) & ES_MULTILINE) != 0) {
      *reinterpret_cast<std::string*>(to) = TextOf(control);
    }
    return TRUE;
  };
  EnumChildWindows(window, look, reinterpret_cast<LPARAM>(&lines));
  return lines;
}

BOOL CALLBACK CountWindow(HWND window, LPARAM to) {
  ++*reinterpret_cast<long*>(to);
  const auto count = [](HWND, LPARAM inside) -> BOOL {
    ++*reinterpret_cast<long*>(inside);
    return TRUE;
  };
  EnumChildWindows(window, count, to);
  return TRUE;
}

long Windows() {
  long count = 0;
  EnumThreadWindows(GetCurrentThreadId(), CountWindow, reinterpret_cast<LPARAM>(&count));
  return count;
}

long Threads() {
  const platform::SystemHandle all(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  long count = 0;
  THREADENTRY32 thread{};
  thread.dwSize = sizeof thread;
  for (BOOL more = Thread32First(all.Get(), &thread); more;
       more = Thread32Next(all.Get(), &thread)) {
    if (thread.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  }
  return count;
}

/// Out of the system's table: Wine 8 tells no process its number (`GetProcessHandleCount`).
long Handles() {
  struct Entry {
    ULONG Process;
    UCHAR Type, Flags;
    USHORT Value;
    void* Object;
    ULONG Access;
  };
  constexpr auto HandleTable = static_cast<SYSTEM_INFORMATION_CLASS>(16);
  std::vector<Entry> table(1 << 20);
  ULONG size = 0;
  NtQuerySystemInformation(HandleTable, table.data(),
                           static_cast<ULONG>(table.size() * sizeof(Entry)), &size);
  // The number of entries stands in front of them, in the room of a pointer.
  const auto* const entries =
      reinterpret_cast<const Entry*>(reinterpret_cast<const char*>(table.data()) + sizeof(void*));
  const ULONG count = *reinterpret_cast<const ULONG*>(table.data());
  long own = 0;
  for (ULONG i = 0; i < count; ++i) own += entries[i].Process == GetCurrentProcessId() ? 1 : 0;
  return own;
}

/// Out of the process's view of the table of all of them: Wine 8 does not count them either
/// (`GetGuiResources`).
long DrawingObjects() {
  struct Entry {
    std::uint64_t Object;
    std::uint16_t Process, Lock, Unique;
    std::uint8_t Type, Flags;
    std::uint64_t User;
  };
  constexpr std::size_t Most = 0x10000;
  constexpr std::size_t Table = 0xF8;  // in the process's block
  PROCESS_BASIC_INFORMATION process{};
  NtQueryInformationProcess(GetCurrentProcess(), ProcessBasicInformation, &process, sizeof process,
                            nullptr);
  const auto* const block = reinterpret_cast<const char*>(process.PebBaseAddress);
  const auto* const entries = *reinterpret_cast<Entry* const*>(block + Table);
  long count = 0;
  for (std::size_t i = 0; i < Most; ++i) {
    const bool own =
        entries[i].Process == 0 || entries[i].Process == (GetCurrentProcessId() & 0xFFFF);
    count += entries[i].Type != 0 && own ? 1 : 0;
  }
  return count;
}

/// The system goes on after a fault within a window's procedure.
LONG WINAPI EndAtFault(EXCEPTION_POINTERS* fault) {
  if (fault->ExceptionRecord->ExceptionCode != EXCEPTION_ACCESS_VIOLATION) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  std::printf("fault at %p\n", fault->ExceptionRecord->ExceptionAddress);
  std::fflush(stdout);
  TerminateProcess(GetCurrentProcess(), 3);
  return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

struct Application::Native {};

Application::Application() {
  AddVectoredExceptionHandler(1, EndAtFault);
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES |
                                                         ICC_TAB_CLASSES | ICC_BAR_CLASSES};
  InitCommonControlsEx(&classes);
  platform::ListenInForeignLoops();
}
Application::~Application() = default;

std::optional<int> OpenBox() {
  const HWND box = Box();
  if (box == nullptr) return std::nullopt;
  return GetDlgItem(box, platform::IDYES) != nullptr ? platform::MB_YESNO : platform::MB_OK;
}

void PressInBox(int button) {
  SendMessageW(Box(), WM_COMMAND, static_cast<WPARAM>(button),
               reinterpret_cast<LPARAM>(GetDlgItem(Box(), button)));
}

std::vector<std::string> CloseForms(const std::string& name) {
  std::vector<std::string> texts;
  for (FormWidget* window : std::vector(FormWidget::All())) {
    if (window->Design().Name != name || !window->IsOnScreen()) continue;
    texts.push_back(platform::Narrow(window->Title()) + '\n' + LinesIn(window->Window()));
    SendMessageW(window->Window(), WM_CLOSE, 0, 0);
  }
  return texts;
}

bool IsOnScreen(const platform::Form& form) {
  const HWND window = Widget(form).Window();
  return IsWindowVisible(window) && !IsIconic(window);
}

bool IsMenuOpen() { return FindWindowW(L"#32768", nullptr) != nullptr; }

void ChooseEntry(const platform::Menu& menu, int entry) {
  const auto& entries = static_cast<platform::MenuWidget*>(menu.Native())->Entries;
  entries[static_cast<std::size_t>(entry)].Click();
}

void Paint(const platform::Form&, bool) {}

std::vector<Held> HeldNow() {
  return {{"handles", Handles(), 0},
          {"threads", Threads(), 0},
          {"windows", Windows(), 0},
          {"drawing objects", DrawingObjects(), 0}};
}

Held MemoryNow() {
  PROCESS_MEMORY_COUNTERS counters{};
  K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  constexpr long Kept = 6000;  // 4,000 after 5,000 steps, and no more after 13,000
  return {"memory", static_cast<long>(counters.WorkingSetSize / 1024), Kept};
}

}  // namespace machine
