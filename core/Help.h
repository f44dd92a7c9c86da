#pragma once

#include <cstdint>

/// Opens the program's help, for the window of that handle.
void ShowHelp(std::uint32_t window);
