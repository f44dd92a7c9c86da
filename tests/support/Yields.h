#pragma once

#include <functional>

// The linker leads the program's yields and waits here.

/// Runs at the beginning of each yield of the program; while it is set, no wait takes time ...
inline std::function<void()> InYield;
/// ... but one that must end by a signal, which can come a moment after what it tells of.
inline std::function<bool()> SignalComes;
