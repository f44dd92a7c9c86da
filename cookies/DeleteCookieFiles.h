#pragma once

#include "platform/ListView.h"

/// Asks, and after Yes deletes for good the file of every selected row and removes those rows.
/// Other rows of the same files stay. A file that can't be deleted is passed over in silence.
void DeleteSelectedCookieFiles(platform::ListView& List);
