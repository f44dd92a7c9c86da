#pragma once

#include <filesystem>
#include <string>

// What tests ask of the machine that they run on: one source a machine.

namespace machine {

/// A path as the standard library takes it, and back.
std::filesystem::path NativePath(const std::string& path);
std::string PathText(const std::filesystem::path& path);

/// Makes a folder of its own; its path ends in a separator.
std::string MakeOwnFolder(const std::filesystem::path& parent);

/// With everything in it, whatever its attributes.
void RemoveFolder(const std::string& path);

/// Has the user's folders and settings lie in a folder, the region be the United States' and the
/// zone UTC as far as a process may choose them; those that it starts follow.
void UseFolder(const std::string& path);

/// The folder below it that is the user's home.
void UseHome(const std::string& path);

void MakeReadOnly(const std::string& path);

/// Of a file whose name begins with a dot, which hides it on some machines.
void Hide(const std::string& path);

/// Has the event loop raise `ticked` once, that time from now.
void TickOnce(int milliseconds, bool& ticked);

/// Has the standard output change no line end.
void WriteBytesAsTheyAre();

/// What ends a folder's text.
extern const char Separator;

}  // namespace machine
