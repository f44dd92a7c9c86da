#pragma once

#include <optional>
#include <string>

// What the desktop starts at log-on: entries of the folder "autostart" in the user's configuration
// folder, one file a name. A command is the executable's path, unquoted whatever it holds, and
// arguments divided by blanks.

namespace platform {

/// Nothing when there is no such entry or it is switched off.
std::optional<std::string> AutostartCommand(const std::string& name);

bool SetAutostartCommand(const std::string& name, const std::string& command);

/// False when no such entry was there or it could not be deleted.
bool RemoveAutostart(const std::string& name);

}  // namespace platform
