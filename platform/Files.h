#pragma once

#include <string>
#include <string_view>

// File services. What is no path names nothing, and an operation on it fails. A folder's path ends
// in `PathSeparator`. No failure is reported but by the result.

namespace platform {

/// Whether a text is a path: one from the machine's root, or from that of a drive or of a share, so
/// that no working folder and no current drive has a part in what it means. What an unresolved
/// folder gives is none, "\" with or without a name behind it, nor is a text with a NUL in it.
bool IsPath(std::string_view text);

// Attribute mask of `Dir`.
inline constexpr int vbNormal = 0;
inline constexpr int vbHidden = 2;
inline constexpr int vbSystem = 4;
inline constexpr int vbDirectory = 16;

/// Starts a look-up by name or pattern ("*.txt", its ending in any case of its letters, or "*.*",
/// which fits every name) and returns the first name found, without folder; empty for none.
/// Finds ordinary files (read-only ones too, links to ordinary files too); hidden files and folders
/// only where `attributes` asks for them. Pipes, sockets, devices and links that point nowhere are
/// never found. A folder's own path, ending in a separator, finds "." in it when folders are asked
/// for.
std::string Dir(const std::string& pattern, int attributes = vbNormal);

/// The next name of the look-up begun last; empty at its end. Deleting on the way loses none.
std::string Dir();

/// Deletes a file, or by the wildcard "*.*" or "*.txt" every ordinary, not hidden file of a folder
/// that can be deleted. A link is removed itself, not what it points to. A read-only file and a
/// folder stay. False when anything that fits stayed or nothing fits.
bool Kill(const std::string& path);

/// The same for the one file of exactly that name: a "*" in it is no wildcard. 0 when it stayed.
int DeleteFileA(const std::string& path);

/// Whether files may be cleared out of a folder: it exists and, once links are followed, is not the
/// root, nor the user's home folder or one above that.
bool IsSafeToClear(const std::string& folder);

/// Creates one folder, no parents. False when it exists or cannot be made.
bool MkDir(const std::string& path);

/// A file opened for sequential text input, closed at the end of its scope. Opened only when `Dir`
/// would find it. Lines end at CR or CR LF; a lone LF does not end a line.
class InputFile {
 public:
  explicit InputFile(const std::string& path);

  /// Whether the file could be opened and read; one of more than 2 GiB can't.
  bool IsOpen() const { return open_; }
  bool EndOfFile() const { return position_ >= content_.size(); }
  /// The next line without its end, as bytes; an empty one at the end of the file.
  std::string LineInput();

 private:
  std::string content_;
  std::size_t position_ = 0;
  bool open_ = false;
};

/// For a scope in which most files of one folder that fit a pattern are opened, about in the order
/// of `FindNextFileA`: what the folder tells of all of them is read once and not asked for each,
/// and the next ones may be read while the last is worked on. One at a time.
class FolderAtHand {
 public:
  explicit FolderAtHand(const std::string& pattern);
  FolderAtHand(const FolderAtHand&) = delete;
  FolderAtHand& operator=(const FolderAtHand&) = delete;
  ~FolderAtHand();

  /// Says that one of this pattern comes within moments, so that reading may begin. A file that
  /// changes until then is read again.
  static void ComesSoon(const std::string& pattern);
  /// Or that it does not come after all.
  static void ComesNot();
};

/// Gives a file new content. What was there before, or all of the new content, is what any reader
/// finds at any moment, also after a full disk or a kill; but a file whose folder takes no other is
/// written over in its place. False when the old content stayed.
bool WriteFileWhole(const std::string& path, std::string_view content);

/// Adds text at a file's end with a single write, creating the file when it is missing. Text that
/// does not fit whole is not added.
bool AppendFile(const std::string& path, std::string_view text);

}  // namespace platform
