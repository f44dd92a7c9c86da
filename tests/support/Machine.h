#pragma once

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

// What tests ask of the machine that they run on: one source a machine.

namespace machine {

/// A path as the standard library takes it, and back.
std::filesystem::path NativePath(const std::string& path);
std::string PathText(const std::filesystem::path& path);

/// Where temporary folders can lie.
std::vector<std::filesystem::path> TemporaryPlaces();

/// Makes a folder of its own; its path ends in a separator.
std::string MakeOwnFolder(const std::filesystem::path& parent);

/// With everything in it, whatever its attributes.
void RemoveFolder(const std::string& path);

/// Has the user's folders and settings lie in a folder, the region be the United States' and the
/// zone UTC as far as a process may choose them; those that it starts follow.
void UseFolder(const std::string& path);

/// The folder below it that is the user's home.
void UseHome(const std::string& path);

/// What the machine itself tells of a path.
struct Facts {
  bool Exists = false;
  bool IsFolder = false;
  bool LeadsToFolder = false;  ///< Is one, or a link to one.
  bool IsPlain = false;        ///< A file, and no link to one.
  bool IsReadable = false;     ///< What a reader of cookies opens: a file that is not hidden.
  bool IsWritable = false;     ///< What a plain write opens.
  bool MayGo = false;          ///< A deletion takes it.
  std::uintmax_t Size = 0;
  std::time_t Modified = 0;
};
Facts FactsOf(const std::string& path);

void ReadOnly(const std::string& path, bool readOnly);

/// Of a file whose name begins with a dot, which hides it on some machines.
void Hide(const std::string& path);

/// Sets when a file was modified: that second, and so many of the least steps that there are.
void Touch(const std::string& path, std::time_t second, int steps);

/// Sets the time that it has.
void TouchInVain(const std::string& path);

/// Makes one of the things that are neither file nor folder. False where the machine has none.
bool MakeOddity(const std::string& path, unsigned which);

/// Names that a cookie file can have on this machine, and how a line of text shows them.
std::vector<std::pair<std::string, std::string>> OddNames();

/// Has the standard output change no line end.
void WriteBytesAsTheyAre();

/// What ends a folder's text.
extern const char Separator;

/// Whether names that differ in case alone are two files.
extern const bool CasesDiffer;

/// Whether a change notification tells of nothing but what its filter names.
extern const bool ToldExactly;

/// Whether it tells of a file whose time alone is changed, as Wine 8 does not.
extern const bool TouchIsTold;

}  // namespace machine
