#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/Rows.h"
#include "platform/Forms.h"
#include "platform/ListView.h"

/// Opens one more detail window, for the file of the list's selected row, read afresh. A file that
/// gives no record leaves `DetailRows`, and so the window, at the file last read.
void OpenCookieDetail(platform::ListView& List, const platform::Form& Owner);

/// Reads a file for a detail window. Where no file has exactly that name, it is the one entry of
/// the folder whose name equals it under the text comparison.
void ReadDetailRows(std::string FileName, std::string_view FileSize, std::string_view Modified);

/// Cookies one below the other, each in four lines and an empty one, ended by CR LF.
std::string DetailText(const std::vector<CookieRow>& Rows);
