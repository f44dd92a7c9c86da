#pragma once

#include <array>
#include <set>
#include <string>
#include <vector>

// What the program must report, list and keep, worked out in the plainest way from the folder
// itself. Nothing here calls the program.

namespace model {

/// Name, size text, modified text.
using File = std::array<std::string, 3>;
using Files = std::vector<File>;

/// The cookie files of a folder, in the order of the directory.
Files FilesIn(const std::string& folder);
/// Whether a reader opens the file: ordinary and not hidden.
bool IsReadable(const std::string& folder, const std::string& name);
std::string Folded(const std::string& text);
/// A line of the log without its time.
std::string Untimed(const std::string& line);
/// The entry of that name, else the only one of an equal name.
std::string Meant(const std::string& name, const std::set<std::string>& entries);

struct Row {
  std::array<std::string, 7> Cells;
  std::size_t Added = 0;
  bool Selected = false;
};

/// A list of cookies and its order.
struct List {
  std::vector<Row> Rows;
  int Key = 0;
  bool Descending = false;
  bool Sorted = false;

  void Fill(const std::vector<Row>& rows);
  void Click(int column, std::array<bool, 7>& ascending);
  void Sort();
};

enum class Handle { None, Live, Lost };

struct Program {
  std::string Folder;
  Files Known;
  bool Pending = false, Stale = true, Minimised = false, Visible = true;
  bool SaveLog = false;

  bool Watching = false;   ///< As the buttons show.
  bool Requested = false;  ///< A start was clicked and its first scan has not begun.
  bool FirstScan = false;  ///< Of a watch; what is known is still that of the last one.
  Handle Notification = Handle::None;
  bool Changed = false;    ///< In the folder, since the last wait.
  bool Gone = false;       ///< The folder itself was removed or moved since the last wait.
  bool Signalled = false;  ///< The last wait was.

  std::vector<std::string> Log;  ///< New lines, without their time.
  std::string MsgText;
  bool MsgCanView = false;
  File MsgFile;

  List Cookies, Search;
  std::vector<Row> All;  ///< What a search looks through.
  std::array<bool, 7> Ascending{};

  void BeginWatch();
  void EndFirstScan();
  /// Whether the wait that follows must end by a signal.
  bool SignalComes() const;
  /// Everything from one yield of the wait loop to the next.
  void Wait();
  bool IsThere() const;
  void Compare();
  void Rebuild();
  void Find(const std::string& text, int field);
  void Report(const std::string& line, const std::string& kind, const File& file, bool removed);
};

}  // namespace model
