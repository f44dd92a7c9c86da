#include "platform/windows/SystemWindows.h"

#include "platform/windows/Clipboard.h"

#include <algorithm>

namespace platform {

void CopyToClipboard(HWND window, const std::wstring& text) {
  if (text.empty() || !OpenClipboard(window)) return;
  EmptyClipboard();
  const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * sizeof(wchar_t));
  if (block != nullptr) {
    auto* characters = static_cast<wchar_t*>(GlobalLock(block));
    *std::copy(text.begin(), text.end(), characters) = L'\0';
    GlobalUnlock(block);
    if (SetClipboardData(CF_UNICODETEXT, block) == nullptr) GlobalFree(block);
  }
  CloseClipboard();
}

}  // namespace platform
