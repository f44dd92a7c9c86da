#pragma once

// Start at logon, hidden in the tray: one registry value, which is the whole state of the option.

/// Whether the value is there and not empty, wherever it points.
bool AutostartEnabled();

/// Writes the value for the executable as it runs now, or deletes it.
void EnableAutostart(bool enabled);
