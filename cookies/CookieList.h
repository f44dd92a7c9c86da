#pragma once

#include "core/Rows.h"
#include "platform/ListView.h"

/// Reads every file of `KnownRows` into `CookieRows` and shows them, in the order that the user
/// last chose by a column header. Selection and scroll position are lost.
void LoadCookieList(platform::ListView& List);

/// The list is about to be rebuilt, so its files may be read already.
void ExpectCookieList(int WindowState);

/// The tick of `TimerCookie`: rebuilds a stale list unless the window is minimised. While a watch's
/// first scan runs and no file is known yet, the flag stays raised for the list that the scan
/// gives.
void CookieListTick(platform::ListView& List, int WindowState);

/// Adds a cookie at the end of one of the two lists.
void AddCookieRow(platform::ListView& List, const CookieRow& Row);
