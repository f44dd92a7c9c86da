#pragma once

#include <vector>

#include "platform/ListView.h"

/// The columns of both cookie lists.
inline const std::vector<platform::ColumnHeader> CookieColumns = {
    {.Text = "Server"},
    {.Text = "Expire Date"},
    {.Text = "Cookie Name"},
    {.Text = "Value"},
    {.Text = "Cookie File"},
    {.Text = "File Size (bytes)", .Alignment = platform::ColumnAlignment::Right},
    {.Text = "Modified", .Alignment = platform::ColumnAlignment::Center},
};

// Of a row, the `SubItems` that detail and deletion read back.
inline constexpr int CookieFileCell = 4;
inline constexpr int FileSizeCell = 5;
inline constexpr int ModifiedCell = 6;
