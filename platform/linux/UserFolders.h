#pragma once

#include <string>

// The XDG base folders of the user, without a separator at the end; empty without a home folder.

namespace platform {

std::string HomeFolder();
std::string ConfigHome();
std::string DataHome();

/// Makes a folder with its missing parents, open to the user alone. False when it is not there
/// then.
bool MakeFolders(const std::string& path);

}  // namespace platform
