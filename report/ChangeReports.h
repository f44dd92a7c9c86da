#pragma once

#include <cstddef>
#include <string>

#include "core/Rows.h"
#include "platform/Forms.h"

// What happens for each change found: a line in the on-screen log, the values for the popup, a
// sound, a line in the log file, a popup.

/// The log lines. `now` is the present date and time in the regional general form. Line breaks and
/// other control characters in a file name are replaced, so that a line stays one line.
std::string ModifiedLine(const std::string& now, const CookieFileRow& before,
                         const CookieFileRow& after);
std::string AddedLine(const std::string& now, const CookieFileRow& row);
std::string RemovedLine(const std::string& now, const CookieFileRow& row);

/// Reports a pair of rows with the same name if its size or time text differs.
void TellOfModified(platform::ListBox& log, const CookieFileRow& before,
                    const CookieFileRow& after);
void TellOfAdded(platform::ListBox& log, const CookieFileRow& row);
void TellOfRemoved(platform::ListBox& log, const CookieFileRow& row);

/// The present date and time as a log line begins with it.
const std::string& PresentDateAndTime();
