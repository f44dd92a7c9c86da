#pragma once

#include <string>

#include "core/Rows.h"
#include "tests/window/CookieLists.h"

// The pieces of work that are measured, on the program's own state as the main window has it.

/// Points the program at a folder, with nothing read yet.
void UseCookieFolder(const std::string& folder);

/// Gives a list the look that the main window gives it.
void StyleLists(CookieLists& lists);

/// The rows with other file names throughout.
Snapshot Renamed(Snapshot rows);

/// The matching of two snapshots, with reports that do nothing.
void Compare(const Snapshot& known, const Snapshot& current);

/// As a rebuild of the list begins: the room of the old rows stays.
void ClearCookieRows();
/// All files of the baseline into `CookieRows`, which is clear.
void ReadCookies();

/// Shows the first `count` cookies in place of those that the list holds, up to the last repaint.
void FillList(platform::ListView& list, std::size_t count);

void Search(CookieLists& lists, int field, const std::string& word);

/// A click on a column's header, counted from 1, up to the last repaint.
void SortColumn(platform::ListView& list, int index);
