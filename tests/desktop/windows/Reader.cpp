// Reads and drives the windows of another program by messages. Each line of the input is a request,
// each line of the output its answer in JSON: null where a window is no longer there.

#include <windows.h>

#include <commctrl.h>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <shellapi.h>
#include <sstream>
#include <string>
#include <utility>
#include <vector>
#include <wininet.h>

namespace {

constexpr UINT MostMilliseconds = 20000;

std::string Quoted(const std::wstring& text) {
  std::ostringstream out;
  out << '"' << std::hex << std::setfill('0');
  for (const wchar_t unit : text) out << "\\u" << std::setw(4) << static_cast<unsigned>(unit);
  out << '"';
  return out.str();
}

std::string Listed(const std::vector<std::string>& values) {
  std::string text;
  for (const std::string& value : values) text += (text.empty() ? "" : ",") + value;
  return '[' + text + ']';
}

std::string Number(std::intptr_t number) { return std::to_string(number); }

std::string PlaceText(const RECT& place) {
  return Listed({Number(place.left), Number(place.top), Number(place.right - place.left),
                 Number(place.bottom - place.top)});
}

LRESULT Ask(HWND window, UINT message, WPARAM w = 0, LPARAM l = 0) {
  DWORD_PTR answer = 0;
  SendMessageTimeoutW(window, message, w, l, SMTO_NORMAL, MostMilliseconds, &answer);
  return static_cast<LRESULT>(answer);
}

template <typename Pointer>
LPARAM Pointing(Pointer pointer) {
  return reinterpret_cast<LPARAM>(pointer);
}

/// Memory of the process whose window it is, for messages that the system hands on as they are.
class Remote {
 public:
  explicit Remote(HWND window) : window_(window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    process_ = OpenProcess(PROCESS_ALL_ACCESS, FALSE, process);
    place_ = static_cast<char*>(
        VirtualAllocEx(process_, nullptr, Size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
  }
  Remote(const Remote&) = delete;
  Remote& operator=(const Remote&) = delete;
  ~Remote() {
    VirtualFreeEx(process_, place_, 0, MEM_RELEASE);
    CloseHandle(process_);
  }

  /// Sends the message with the address of the record there, and takes the record back.
  template <typename Record>
  LRESULT Send(UINT message, WPARAM w, Record& record) {
    WriteProcessMemory(process_, place_, &record, sizeof record, nullptr);
    const LRESULT answer = Ask(window_, message, w, Pointing(place_));
    ReadProcessMemory(process_, place_, &record, sizeof record, nullptr);
    return answer;
  }

  /// Where a text has room behind the record.
  wchar_t* TextPlace() const { return reinterpret_cast<wchar_t*>(place_ + Size / 2); }
  static constexpr int TextRoom = 8192;

  std::wstring Text() const {
    std::wstring text(TextRoom, L'\0');
    ReadProcessMemory(process_, TextPlace(), text.data(), TextRoom * sizeof(wchar_t), nullptr);
    return text.substr(0, text.find(L'\0'));
  }

 private:
  static constexpr SIZE_T Size = 65536;
  HWND window_;
  HANDLE process_;
  char* place_;
};

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(Ask(window, WM_GETTEXTLENGTH)) + 1, L'\0');
  Ask(window, WM_GETTEXT, text.size(), Pointing(text.data()));
  return text.substr(0, text.find(L'\0'));
}

std::wstring ClassOf(HWND window) {
  std::wstring name(256, L'\0');
  name.resize(static_cast<std::size_t>(GetClassNameW(window, name.data(), 256)));
  return name;
}

/// What the system itself keeps of it, without asking the program.
std::wstring KeptTextOf(HWND window) {
  std::wstring text(Remote::TextRoom, L'\0');
  text.resize(
      static_cast<std::size_t>(InternalGetWindowText(window, text.data(), Remote::TextRoom)));
  return text;
}

std::string Described(HWND window, const std::wstring& text) {
  if (!IsWindow(window)) return "null";
  GUITHREADINFO focus{};
  focus.cbSize = sizeof focus;
  GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &focus);
  RECT place{};
  GetWindowRect(window, &place);
  const LONG style = GetWindowLongW(window, GWL_STYLE);
  const HWND parent = (style & WS_CHILD) != 0 ? GetAncestor(window, GA_PARENT) : nullptr;
  const std::vector<std::pair<const char*, std::string>> facts{
      {"id", Number(Pointing(window))},
      {"parent", Number(Pointing(parent))},
      {"class", Quoted(ClassOf(window))},
      {"text", Quoted(text)},
      {"place", PlaceText(place)},
      {"style", Number(style)},
      {"enabled", Number(IsWindowEnabled(window))},
      {"visible", Number(IsWindowVisible(window))},
      {"focused", Number(window == focus.hwndFocus)},
      {"active", Number(window == GetForegroundWindow())}};
  std::string told;
  for (const auto& [name, value] : facts) {
    told += std::string(told.empty() ? "{\"" : ",\"") + name + "\":" + value;
  }
  return told + '}';
}

using Windows = std::vector<std::string>;

BOOL CALLBACK Note(HWND window, LPARAM windows) {
  reinterpret_cast<Windows*>(windows)->push_back(Described(window, KeptTextOf(window)));
  return TRUE;
}

std::wstring ProgramOf(HWND window) {
  DWORD number = 0;
  GetWindowThreadProcessId(window, &number);
  const HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, number);
  std::wstring file(1024, L'\0');
  auto length = static_cast<DWORD>(file.size());
  QueryFullProcessImageNameW(process, 0, file.data(), &length);
  CloseHandle(process);
  return file.substr(0, length);
}

BOOL CALLBACK NoteIfOwn(HWND window, LPARAM windows) {
  if (!ProgramOf(window).ends_with(L"\\quillmere.exe")) return TRUE;
  Note(window, windows);
  EnumChildWindows(window, Note, windows);
  return TRUE;
}

/// All windows of the program, each before what lies in it.
std::string Tree() {
  Windows windows;
  EnumWindows(NoteIfOwn, Pointing(&windows));
  return Listed(windows);
}

std::string Lines(HWND list) {
  std::vector<std::string> lines;
  const LRESULT count = Ask(list, LB_GETCOUNT);
  for (LRESULT i = 0; i < count; ++i) {
    const auto line = static_cast<WPARAM>(i);
    std::wstring text(static_cast<std::size_t>(Ask(list, LB_GETTEXTLEN, line)) + 1, L'\0');
    Ask(list, LB_GETTEXT, line, Pointing(text.data()));
    lines.push_back(Quoted(text.substr(0, text.find(L'\0'))));
  }
  return Listed(lines);
}

int Columns(HWND list) {
  const auto header = reinterpret_cast<HWND>(Ask(list, LVM_GETHEADER));
  return static_cast<int>(Ask(header, HDM_GETITEMCOUNT));
}

std::string Rows(HWND list) {
  std::vector<std::string> rows;
  Remote remote(list);
  const int columns = Columns(list);
  const LRESULT count = Ask(list, LVM_GETITEMCOUNT);
  for (LRESULT row = 0; row < count; ++row) {
    std::vector<std::string> cells;
    for (int column = 0; column < columns; ++column) {
      LVITEMW item{};
      item.iSubItem = column;
      item.pszText = remote.TextPlace();
      item.cchTextMax = Remote::TextRoom;
      remote.Send(LVM_GETITEMTEXTW, static_cast<WPARAM>(row), item);
      cells.push_back(Quoted(remote.Text()));
    }
    rows.push_back(Listed(cells));
  }
  return Listed(rows);
}

std::string OnScreen(HWND window, RECT place) {
  MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&place), 2);
  return PlaceText(place);
}

std::string CellPlace(HWND list, WPARAM row, LONG column) {
  RECT place{LVIR_LABEL, column, 0, 0};
  Remote(list).Send(column == 0 ? LVM_GETITEMRECT : LVM_GETSUBITEMRECT, row, place);
  return OnScreen(list, place);
}

std::string Tabs(HWND strip) {
  std::vector<std::string> tabs;
  Remote remote(strip);
  const LRESULT count = Ask(strip, TCM_GETITEMCOUNT);
  for (WPARAM tab = 0; tab < static_cast<WPARAM>(count); ++tab) {
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = remote.TextPlace();
    item.cchTextMax = Remote::TextRoom;
    remote.Send(TCM_GETITEMW, tab, item);
    const std::wstring text = remote.Text();
    RECT place{};
    remote.Send(TCM_GETITEMRECT, tab, place);
    tabs.push_back(Listed({Quoted(text), OnScreen(strip, place)}));
  }
  return Listed(tabs);
}

bool ThrowAway(std::string path) {
  path += '\0';  // the list of paths ends in an empty one
  SHFILEOPSTRUCTA what{};
  what.wFunc = FO_DELETE;
  what.pFrom = path.c_str();
  what.fFlags = FOF_ALLOWUNDO | FOF_NO_UI;
  return SHFileOperationA(&what) == 0;
}

std::string Answer(std::istringstream& words) {
  std::string request;
  std::string text;
  std::uintptr_t number = 0;
  std::uint32_t message = 0;
  std::intptr_t w = 0;
  std::intptr_t l = 0;
  words >> request;
  if (request == "tree") return Tree();
  if (request == "cookie") {
    words >> text >> std::ws;
    std::string cookie;
    std::getline(words, cookie);
    return Number(InternetSetCookieA(text.c_str(), nullptr, cookie.c_str()));
  }
  if (request == "throw") {
    std::getline(words >> std::ws, text);
    return Number(ThrowAway(text));
  }
  words >> number >> message >> w >> l;
  const auto window = reinterpret_cast<HWND>(number);
  if (!IsWindow(window)) return "null";
  if (request == "window") return Described(window, TextOf(window));
  if (request == "lines") return Lines(window);
  if (request == "rows") return Rows(window);
  if (request == "cell") return CellPlace(window, message, static_cast<LONG>(w));
  if (request == "tabs") return Tabs(window);
  if (request == "send") return Number(Ask(window, message, static_cast<WPARAM>(w), l));
  if (request == "post") return Number(PostMessageW(window, message, static_cast<WPARAM>(w), l));
  return "null";
}

}  // namespace

int main() {
  SetProcessDPIAware();
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::cout << Answer(words) << std::endl;
  }
}
