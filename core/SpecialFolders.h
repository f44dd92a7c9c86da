#pragma once

#include <cstdint>
#include <string>

/// A shell folder's path, ending in the separator. A folder that can't be resolved is "\" and a
/// path too long for the shell's buffer "C:\": neither names anything on this machine.
std::string GetSpecialFolderPath(int csidl, std::uint32_t window);

/// Fills the variables of the program's own folders and makes the folders that belong beside the
/// executable where they are missing.
void ResolveProgramFolders();

/// Fills the variables of the user's folders.
void ResolveShellFolders(std::uint32_t window);
