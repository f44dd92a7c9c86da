#pragma once

#include "platform/windows/SystemWindows.h"

namespace platform {

/// Keys that mean the same in every window of the program: Tab, Esc, Enter on a button, Alt with a
/// caption's letter. True when the message is one of them and done with.
bool TranslateKeys(const MSG& message);

}  // namespace platform
