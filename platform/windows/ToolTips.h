#pragma once

#include "platform/windows/SystemWindows.h"

#include <string>

namespace platform {

struct NativeWidget;

/// What shows while the pointer rests on a widget, also on a disabled one; empty for nothing.
void ShowToolTip(const NativeWidget& widget, const std::wstring& text);

/// The text of the place under the pointer has changed: what shows goes.
void ChangeToolTip(const NativeWidget& widget, const std::wstring& text);

}  // namespace platform
