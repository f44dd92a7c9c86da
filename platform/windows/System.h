#pragma once

// The system's own header, tamed: it defines many names of the contract as macros, and here they go
// again. In the contract they have the same values. It comes before every other header
// (.clang-format sees to that), so that a name of the contract that is missing here does not
// compile.

#define NOMINMAX
#define UNICODE
#define WIN32_LEAN_AND_MEAN
#define _WIN32_WINNT 0x0A00
#include <windows.h>

#include <mmsystem.h>
#include <shellapi.h>
#include <shlobj.h>

#undef CSIDL_COOKIES
#undef CSIDL_RECENT
#undef ERROR_FILE_NOT_FOUND
#undef ERROR_MORE_DATA
#undef ERROR_SUCCESS
#undef FILE_ATTRIBUTE_DIRECTORY
#undef FILE_ATTRIBUTE_HIDDEN
#undef FILE_ATTRIBUTE_NORMAL
#undef FILE_ATTRIBUTE_READONLY
#undef FILE_ATTRIBUTE_SYSTEM
#undef FILE_NOTIFY_CHANGE_FILE_NAME
#undef FILE_NOTIFY_CHANGE_LAST_WRITE
#undef HWND_TOPMOST
#undef IDNO
#undef IDOK
#undef IDYES
#undef MB_ICONINFORMATION
#undef MB_ICONQUESTION
#undef MB_OK
#undef MB_YESNO
#undef NIF_ICON
#undef NIF_MESSAGE
#undef NIF_TIP
#undef NIM_ADD
#undef NIM_DELETE
#undef REG_DWORD
#undef REG_SZ
#undef SHERB_NOCONFIRMATION
#undef SHERB_NOPROGRESSUI
#undef SHERB_NOSOUND
#undef SW_SHOWNORMAL
#undef WAIT_FAILED
#undef WAIT_OBJECT_0
#undef WAIT_TIMEOUT
#undef WM_LBUTTONDBLCLK
#undef WM_LBUTTONUP
#undef WM_MOUSEMOVE
#undef WM_RBUTTONUP

// Those that are of another type there.
namespace platform {
inline const ::HANDLE NoSystemHandle = INVALID_HANDLE_VALUE;
inline const ::HKEY SystemCurrentUser = HKEY_CURRENT_USER;
}  // namespace platform
#undef INVALID_HANDLE_VALUE
#undef HKEY_CURRENT_USER
