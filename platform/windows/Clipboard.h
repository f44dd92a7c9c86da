#pragma once

#include "platform/windows/SystemWindows.h"

#include <string>

namespace platform {

/// An empty text leaves there what is there.
void CopyToClipboard(HWND window, const std::wstring& text);

}  // namespace platform
