#pragma once

#include <string>
#include <vector>

#include "platform/Forms.h"
#include "platform/ListView.h"

/// The entries of `Combo1`: the fields that can be searched. There is none for the size.
std::vector<std::string> SearchFieldNames();

/// Shows in `ListVSearch` every row of `CookieRows` whose field `Field` (an index of the entries
/// above) holds the text of the box, case ignored. The box keeps the text without the spaces around
/// it; an empty one finds nothing.
void SearchCookies(platform::TextBox& TextSearch, int Field, platform::ListView& ListVSearch);

/// Adds the cookie in slot `Index` of `CookieRows`.
void AddSearchRow(platform::ListView& ListVSearch, double Index);
