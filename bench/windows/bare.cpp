#include "platform/windows/SystemWindows.h"

#include <array>
#include <string_view>

// A window with as many controls of the same kinds as the program's main window, by the system's
// own calls: two timers of 500 milliseconds, and a wait of 100 milliseconds that also ends for
// events. What it costs, the system costs.

namespace {

struct Row {
  std::wstring_view Class;
  const wchar_t* Caption;
  DWORD Style;
  int Left, Top, Width, Height;
};

constexpr DWORD Unseen = WS_CHILD;
constexpr DWORD Seen = WS_CHILD | WS_VISIBLE | WS_TABSTOP;
constexpr DWORD Report = LVS_REPORT | LVS_OWNERDATA | WS_BORDER;

constexpr std::array Controls{
    Row{WC_BUTTONW, L"Start", Seen, 8, 12, 106, 25},
    Row{WC_BUTTONW, L"Stop", Seen | WS_DISABLED, 8, 44, 106, 25},
    Row{WC_BUTTONW, L"Help", Seen, 8, 180, 106, 25},
    Row{WC_BUTTONW, L"About", Seen, 8, 212, 106, 25},
    Row{WC_TABCONTROLW, L"", Seen, 130, 12, 400, 230},
    Row{WC_LISTBOXW, L"", Seen | WS_BORDER | WS_VSCROLL, 140, 44, 380, 190},
    Row{WC_LISTVIEWW, L"", Unseen | Report, 140, 44, 380, 190},
    Row{WC_STATICW, L"", Unseen, 140, 44, 380, 190},
    Row{WC_LISTVIEWW, L"", Unseen | Report, 140, 80, 380, 150},
    Row{WC_STATICW, L"Search", Unseen, 140, 44, 60, 20},
    Row{WC_EDITW, L"", Unseen | WS_BORDER, 200, 44, 105, 19},
    Row{WC_COMBOBOXW, L"", Unseen | CBS_DROPDOWNLIST, 320, 44, 90, 120},
    Row{WC_STATICW, L"in", Unseen, 305, 44, 15, 20},
    Row{WC_BUTTONW, L"Search", Unseen, 420, 44, 90, 25},
    Row{WC_STATICW, L"", Unseen, 140, 44, 380, 190},
    Row{WC_BUTTONW, L"Clean", Unseen | BS_GROUPBOX, 150, 54, 200, 150},
    Row{WC_BUTTONW, L"Cookies", Unseen | BS_AUTOCHECKBOX, 160, 74, 150, 20},
    Row{WC_BUTTONW, L"Documents", Unseen | BS_AUTOCHECKBOX, 160, 104, 150, 20},
    Row{WC_BUTTONW, L"Recycle bin", Unseen | BS_AUTOCHECKBOX, 160, 134, 150, 20},
    Row{WC_BUTTONW, L"Clean", Unseen, 400, 180, 90, 25},
    Row{WC_STATICW, L"", Unseen, 140, 44, 380, 190},
    Row{WC_BUTTONW, L"Sound 1", Unseen | BS_AUTOCHECKBOX, 160, 74, 150, 20},
    Row{WC_BUTTONW, L"Sound 2", Unseen | BS_AUTOCHECKBOX, 160, 104, 150, 20},
    Row{WC_BUTTONW, L"Play", Unseen, 400, 74, 90, 25},
    Row{WC_BUTTONW, L"Play", Unseen, 400, 104, 90, 25},
    Row{WC_STATICW, L"", Unseen, 140, 44, 380, 190},
    Row{WC_BUTTONW, L"Log", Unseen | BS_AUTOCHECKBOX, 160, 74, 150, 20},
    Row{WC_BUTTONW, L"Start", Unseen | BS_AUTOCHECKBOX, 160, 104, 150, 20},
    Row{WC_BUTTONW, L"Tray", Unseen | BS_AUTOCHECKBOX, 160, 134, 150, 20}};

void FillTabs(HWND tabs) {
  std::array captions{L"Log", L"Cookies", L"Search", L"Tools", L"Sound", L"Options"};
  for (int i = 0; i < static_cast<int>(captions.size()); ++i) {
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = const_cast<wchar_t*>(captions[static_cast<std::size_t>(i)]);
    SendMessageW(tabs, TCM_INSERTITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
  }
}

void FillHeader(HWND list) {
  for (int i = 0; i < 7; ++i) {
    wchar_t title[] = L"Column";
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH;
    column.pszText = title;
    column.cx = 90;
    SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(i),
                 reinterpret_cast<LPARAM>(&column));
  }
}

void Fill(HWND window) {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
  const HFONT font = CreateFontIndirectW(&metrics.lfMessageFont);
  for (const Row& row : Controls) {
    const HWND control =
        CreateWindowExW(0, row.Class.data(), row.Caption, row.Style, row.Left, row.Top, row.Width,
                        row.Height, window, nullptr, GetModuleHandleW(nullptr), nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    if (row.Class == WC_TABCONTROLW) FillTabs(control);
    if (row.Class == WC_LISTVIEWW) FillHeader(control);
  }
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM word, LPARAM value) {
  if (message == WM_DESTROY) ExitProcess(0);
  return DefWindowProcW(window, message, word, value);
}

HWND MakeWindow() {
  WNDCLASSW kind{};
  kind.lpfnWndProc = Procedure;
  kind.hInstance = GetModuleHandleW(nullptr);
  kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  kind.lpszClassName = L"Bare";
  RegisterClassW(&kind);
  return CreateWindowExW(0, L"Bare", L"Quillmere", WS_OVERLAPPEDWINDOW, 370, 385, 543, 281, nullptr,
                         nullptr, kind.hInstance, nullptr);
}

}  // namespace

int main() {
  const HWND window = MakeWindow();
  Fill(window);
  SetTimer(window, 1, 500, nullptr);
  SetTimer(window, 2, 500, nullptr);
  ShowWindow(window, SW_SHOW);
  for (;;) {
    MsgWaitForMultipleObjectsEx(0, nullptr, 100, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
}
