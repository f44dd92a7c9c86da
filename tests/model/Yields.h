#pragma once

#include <functional>

/// Runs at the beginning of each yield of the program; while it is set, no wait takes time.
inline std::function<void()> InYield;
