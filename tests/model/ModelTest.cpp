#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <map>
#include <random>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include <QAbstractButton>
#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "monitor/WatchFlags.h"
#include "platform/linux/Widgets.h"
#include "tests/model/Model.h"
#include "tests/model/Yields.h"
#include "tests/support/CookieFolder.h"
#include "ui/FormMain.h"

namespace fs = std::filesystem;
using model::Row;

namespace {

int FromEnvironment(const char* name, int usual) {
  const char* const value = std::getenv(name);
  return value != nullptr ? std::stoi(value) : usual;
}

const std::string Long(251, 'n');
const std::vector<std::string> FileNames = {
    "a.txt",           "A.TXT",       "\xC3\xA4.txt", "\xC3\x84.txt", "line\n\ttab\x7F\u2028.txt",
    "bad\xFF\xC3.txt", Long + ".txt", Long + ".TXT",  ".hidden.txt",  "*.txt",
    " [*]'\".txt",     ".txt",        "other.dat",    "a.txt.bak",    "c1.txt",
    "c2.txt",          "c3.txt",      "c4.txt"};
const std::vector<std::string> Contents = {
    "",
    "x",
    std::string(1234, '\n'),
    Record("uid", "a%3Db", "shop.example/"),
    Record("Password", "", "news.example//") + Record("lang", "\xC3\xA4\xC3\xA4", "Shop.example/x"),
    Record("a", "b", "c", "4294967295") + Record("d", "e", "/", "2147483647") + "cut\n",
    Record("n", "v", "s", "30000000") + "a\rb\n" + Record("lost", "v", "s"),
    Record("x", "v", "s.example", "word"),
    Record("y", "z", "", "-7") + Record("y", "10", "9", "29721845").substr(0, 60)};
const std::vector<std::string> SearchTexts = {"password", "  SHOP ", "",     "   ", "-",
                                              "\xC3\x84", "txt",     "2004", "*",   "%3d"};

/// What the process holds: descriptors, threads, windows, resident kB.
using Held = std::array<long, 4>;

Held HeldNow() {
  malloc_trim(0);
  const auto count = [](const char* folder) {
    return static_cast<long>(std::distance(fs::directory_iterator(folder), {}));
  };
  Held held{count("/proc/self/fd"), count("/proc/self/task"),
            QApplication::topLevelWidgets().size()};
  std::ifstream("/proc/self/statm") >> held[3] >> held[3];
  held[3] *= sysconf(_SC_PAGESIZE) / 1024;
  return held;
}

/// One run: random steps, each within a yield of the program, which then must be as the model says.
class ModelRun {
 public:
  explicit ModelRun(int seed, bool withWindows = false)
      : seed_(seed), withWindows_(withWindows), random_(static_cast<unsigned>(seed)) {
    now_.Folder = folder_.Path("quillmere/cookies/").string();
    for (const char* made : {"quillmere/cookies", "outside", "log"}) {
      fs::create_directories(folder_.Path(made));
    }
    std::ofstream(folder_.Path("outside/target")) << Contents[3];
    qputenv("XDG_DATA_HOME", folder_.Path("").parent_path().c_str());
    for (int i = Pick(12); i > 0; --i) ChangeFolder();
  }

  void Go(int steps) {
    steps_ = steps;
    QObject::connect(&answer_, &QTimer::timeout, [this] { Answer(); });
    InYield = [this] { Yielded(); };
    now_.Requested = now_.Watching = true;
    form_.Load();
    while (!done_) platform::DoEvents();
    InYield = nullptr;
  }

  Held Before{}, After{};  ///< While it watches: after the first thousand steps, and after all.
  int Changes = 0, Rebuilds = 0, Starts = 0, Reports = 0;

 private:
  // --- Where a step can come ---------------------------------------------------------------------

  void Yielded() {
    if (done_) return;
    if (now_.Requested && (PublicDim.FirstScanRunning || PublicDim.WatchHandle != 0)) {
      now_.BeginWatch();
    }
    if (now_.FirstScan && !PublicDim.FirstScanRunning) now_.EndFirstScan();
    if (WatchFlags.ScanRunning || stopping_) return Within();
    if (busy_) return;
    if (withWindows_) Measure();
    Prepare();
    now_.Wait();
    Require(PublicDim.ChangePending == now_.Pending, "whether a change is pending");
    if (IsOver() || testing::Test::HasFailure()) return Finish();
    ++step_;
    Step();
    if (withWindows_) QTimer::singleShot(0, qApp, [this] { CloseWindows(); });
  }

  void Measure() {
    if (now_.Notification != model::Handle::Live) return;
    if (step_ >= 1000 && Before == Held()) Before = HeldNow();
    if (step_ >= steps_) After = HeldNow();
  }

  /// A walk that is measured goes on until it watches.
  bool IsOver() const { return step_ >= steps_ && (!withWindows_ || After != Held()); }

  /// In an event of its own, as the user's clicks are.
  void CloseWindows() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->objectName() != "FormMsg" && window->objectName() != "FormView") continue;
      ++closed_[window->objectName()];
      window->close();
    }
  }

  /// The run's own ticks come at once, so the timers rest.
  void Prepare() {
    form_.TimerCompare.Enabled(false);
    form_.TimerCookie.Enabled(false);
    platform::Widget(form_)->setUpdatesEnabled(seed_ % 8 == 0);  // painting is most of the work
    PublicDim.MsgEnabled = withWindows_;
    PublicDim.AppPath = folder_.Path("").string();
    PublicDim.LogDir = folder_.Path("log/").string();
  }

  /// What may land in a scan or in the yield of a stop.
  void Within() {
    if (within_ >= 2 || Pick(12) != 0) return;
    ++within_;
    const int kind = Pick(4);
    if (kind == 0) TickCompare();
    if (kind == 1) TickCookie();
    if (kind == 2 && form_.CmdStop.Enabled()) Stop();
    if (kind == 3 && form_.CmdStart.Enabled()) Start();
    CheckButtons();
    --within_;
  }

  void Step() {
    const int kind = Pick(100);
    if (now_.Requested && kind >= 4) return;  // a start that waits for its timer
    if (kind < 4) return form_.CmdStop.Enabled() ? Stop() : Start();
    busy_ = true;
    gone_.clear();
    std::set<std::string> left = Entries();
    if (kind < 40) {
      for (int i = 1 + Pick(3); i > 0; --i) ChangeFolder();
    } else if (kind < 62) {
      TickCompare();
    } else if (kind < 75) {
      TickCookie();
    } else if (kind < 80) {
      Search();
      if (withWindows_) OpenDetail();
    } else if (kind < 85) {
      const int column = 1 + Pick(7);
      const auto [list, expected] = AnyList();
      list->ColumnClick(column);
      expected->Click(column, now_.Ascending);
    } else if (kind < 90) {
      const auto [list, expected] = AnyList();
      for (Row& row : expected->Rows) {
        if (Pick(4) != 0) continue;
        row.Selected = !row.Selected;
        list->Item(static_cast<int>(&row - expected->Rows.data()) + 1).Selected(row.Selected);
      }
    } else if (kind < 92) {
      const bool search = Pick(2) == 0;
      asked_ = search ? &now_.Search : &now_.Cookies;
      answer_.start(0);
      auto* menu =
          static_cast<QMenu*>(Widget((search ? form_.MenuSearch : form_.MenuCookie).Native()));
      menu->actions()[1]->trigger();
    } else if (kind < 93) {
      Clean();
    } else if (kind < 96) {
      ChangeWindow();
    } else {
      ChangeOption();
    }
    answer_.stop();
    Check();
    for (const std::string& name : gone_) left.erase(name);
    if (kind >= 40) Require(Entries() == left, "the folder's files");
    busy_ = false;
  }

  void Finish() {
    done_ = true;
    std::string saved;
    for (const auto& file : fs::directory_iterator(folder_.Path("log"))) {
      std::ifstream stream(file.path(), std::ios::binary);
      for (std::string line; std::getline(stream, line);) saved += Untimed(line) + '\n';
    }
    Require(saved == saved_, "the log file");
    if (withWindows_) CloseWindows();
    Require(!withWindows_ || closed_["FormMsg"] == Reports, "the number of popups");
    Require(closed_["FormView"] == details_, "the number of detail windows");
    if (form_.CmdStop.Enabled()) form_.CmdStop.Click();
  }

  // --- Clicks and ticks --------------------------------------------------------------------------

  void TickCompare() {
    const bool due = now_.Pending && !WatchFlags.ScanRunning;
    if (due) now_.Pending = false;
    form_.TimerCompare.Tick();
    if (!due) return;
    const std::size_t before = now_.Log.size();
    now_.Compare();
    Reports += static_cast<int>(now_.Log.size() - before);
  }

  void TickCookie() {
    Rebuilds += now_.Stale ? 1 : 0;
    form_.TimerCookie.Tick();
    now_.Rebuild();
    Rebuilds -= now_.Stale ? 1 : 0;
  }

  /// From within a scan or a stop the watch begins later, else inside of the click.
  void Start() {
    ++Starts;
    now_.Watching = true;
    now_.Requested = !now_.FirstScan;
    form_.CmdStart.Click();
  }

  void Stop() {
    if (now_.Requested || now_.FirstScan) {
      form_.CmdStop.Click();
      now_.Watching = now_.Requested = false;
    } else {
      const bool outer = std::exchange(stopping_, true);
      form_.CmdStop.Click();
      stopping_ = outer;
      now_.Watching = now_.Requested;
    }
    now_.Notification = model::Handle::None;
  }

  void Search() {
    const std::string& text = Any(SearchTexts);
    const int field = Pick(6);
    form_.TextSearch.Text(text);
    form_.Combo1.ListIndex(field);
    form_.CmdSearch.Click();
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    const std::string trimmed = text.substr(first, text.find_last_not_of(' ') + 1 - first);
    Require(form_.TextSearch.Text() == trimmed, "the search text");
    now_.Find(trimmed, field);
  }

  void OpenDetail() {
    const auto [list, expected] = AnyList();
    list->MouseUp(1);
    if (expected->Rows.empty()) list->MouseUp(2);
    Require(QApplication::activePopupWidget() == nullptr, "a menu for nothing");
    Pick(2) == 0 ? list->DblClick() : list->KeyPress('\r');
    details_ += expected->Rows.empty() ? 0 : 1;
  }

  void Clean() {
    form_.Check1.Value(1);
    asked_ = nullptr;
    answer_.start(0);
    form_.CmdClean.Click();
  }

  /// Answers a question, and lets a tick pass while it is open.
  void Answer() {
    const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr) return;
    if (box->button(QMessageBox::Yes) == nullptr) return box->button(QMessageBox::Ok)->click();
    answer_.stop();
    if (Pick(4) == 0) TickCompare();
    if (Pick(4) == 0) TickCookie();
    answer_.start(0);
    const bool yes = Pick(4) != 0;
    if (yes && asked_ != nullptr) {
      for (const Row& row : asked_->Rows) {
        if (row.Selected) Deleted(model::Meant(row.Cells[4], Entries()));
      }
      std::erase_if(asked_->Rows, [](const Row& row) { return row.Selected; });
    } else if (yes) {
      Cleaned();
    }
    box->button(yes ? QMessageBox::Yes : QMessageBox::No)->click();
  }

  void Cleaned() {
    for (const model::File& file : model::FilesIn(now_.Folder)) {
      if (model::IsReadable(now_.Folder, file[0])) Deleted(file[0]);
    }
    now_.Known.clear();
    now_.Log.emplace_back(" - Cookies are cleaned **********");
    now_.Stale = true;
  }

  void Deleted(const std::string& name) {
    struct stat info;
    if (lstat((now_.Folder + name).c_str(), &info) != 0) return;
    if (!S_ISLNK(info.st_mode) && (!S_ISREG(info.st_mode) || (info.st_mode & S_IWUSR) == 0)) return;
    gone_.insert(name);
    now_.Changed = true;
  }

  void ChangeWindow() {
    if (now_.Minimised) {
      form_.Form_MouseMove(514 * 15);  // a click on the tray icon
    } else {
      form_.WindowState(platform::vbMinimized);
    }
    now_.Minimised = !now_.Minimised;
    now_.Visible = !now_.Minimised;  // it goes to the tray
  }

  void ChangeOption() {
    CheckLog();  // what came within a stop was still written, or not, as it was
    now_.SaveLog = !now_.SaveLog;
    form_.CheckLog.Value(now_.SaveLog ? 0 : 1);
  }

  // --- The folder --------------------------------------------------------------------------------

  void ChangeFolder() {
    const fs::path folder = now_.Folder;
    const int kind = Pick(100);
    if (!fs::exists(folder) || kind == 0) return ChangeWholeFolder();
    const fs::path file = folder / Any(FileNames);
    const fs::path other = folder / Any(FileNames);
    const fs::path inside = folder / "sub.txt" / "inner.txt";
    struct stat info;
    const bool exists = lstat(file.c_str(), &info) == 0;
    const bool plain = exists && S_ISREG(info.st_mode);
    const bool otherIsPlain = fs::is_regular_file(fs::symlink_status(other));
    bool changed = exists;
    if (kind < 40) {
      const std::string& content = Any(Contents);
      if (exists && (!plain || (info.st_mode & S_IWUSR) == 0 || content.empty())) return;
      std::ofstream(file, std::ios::binary) << content;
      changed = true;
    } else if (kind < 52 && plain) {
      // Never back to an earlier time: between two waits that is no change.
      changed = Pick(4) != 0;
      const timespec time = changed ? timespec{1'100'000'000 + Pick(3), ++touches_} : info.st_mtim;
      const timespec times[] = {time, time};
      utimensat(AT_FDCWD, file.c_str(), times, 0);
    } else if (kind < 62 && plain && otherIsPlain) {
      changed = file != other;
      fs::rename(file, other);
    } else if (kind < 67 && plain) {
      const fs::path twin = folder / model::Folded(file.filename());
      if (fs::exists(fs::symlink_status(twin))) return;
      fs::rename(file, twin);
    } else if (kind < 75) {
      const fs::path away = folder_.Path("outside") / file.filename();
      if (exists == fs::exists(fs::symlink_status(away))) return;
      changed = !fs::is_directory(fs::symlink_status(exists ? file : away));
      fs::rename(exists ? file : away, exists ? away : file);
    } else if (kind < 85 && exists) {
      fs::remove(file);
      changed = !S_ISDIR(info.st_mode);
    } else if (kind < 88 && plain) {
      changed = false;
      chmod(file.c_str(), info.st_mode ^ S_IWUSR);
    } else if (kind < 91 && !exists) {
      mkdir(file.c_str(), 0700);
    } else if (kind < 96 && !exists) {
      static const char* const targets[] = {"../../outside/target", "nowhere", "..", "/dev/null"};
      changed = (Pick(3) == 0 ? mkfifo(file.c_str(), 0600)
                              : symlink(targets[Pick(4)], file.c_str())) == 0;
    } else {
      changed = false;
      fs::create_directories(inside.parent_path());
      std::ofstream(inside) << "text";
      fs::remove(inside);
    }
    now_.Changed = now_.Changed || changed;
    Changes += changed ? 1 : 0;
  }

  /// Takes the watched folder away or brings one, sometimes both before anything can look.
  void ChangeWholeFolder() {
    const fs::path folder = folder_.Path("quillmere/cookies");
    const fs::path aside = folder_.Path("quillmere/aside");
    if (fs::exists(folder)) {
      fs::remove_all(aside);
      fs::rename(folder, aside);
      now_.Gone = true;
      if (Pick(2) == 0) return;
    }
    if (Pick(2) == 0 && fs::exists(aside)) {
      fs::rename(aside, folder);
    } else {
      fs::create_directory(folder);
    }
  }

  std::set<std::string> Entries() const {
    std::set<std::string> names;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(now_.Folder, missing)) {
      names.insert(entry.path().filename());
    }
    return names;
  }

  // --- What must be so ---------------------------------------------------------------------------

  void Require(bool holds, const std::string& what) const {
    const char* const count = withWindows_ ? " ENDURANCE_STEPS=" : " MODEL_STEPS=";
    EXPECT_TRUE(holds) << what << " differs; again with MODEL_SEED=" << seed_ << count << step_;
  }

  void Check() {
    CheckButtons();
    CheckLog();
    CheckRows(form_.ListVCookie, now_.Cookies, "ListVCookie");
    CheckRows(form_.ListVSearch, now_.Search, "ListVSearch");
    Require(PublicDim.MsgText == now_.MsgText && PublicDim.MsgCanView == now_.MsgCanView &&
                PublicDim.MsgFileName == now_.MsgFile[0] &&
                PublicDim.MsgFileSize == now_.MsgFile[1] &&
                PublicDim.MsgFileModified == now_.MsgFile[2],
            "what the popup gets");
    const QWidget* window = platform::Widget(form_);  // hidden in the task bar, without a tray
    Require((window->isVisible() && !window->isMinimized()) == now_.Visible &&
                (form_.WindowState() == platform::vbMinimized) == now_.Minimised,
            "the window");
  }

  void CheckButtons() {
    Require(form_.CmdStop.Enabled() == now_.Watching && form_.CmdStart.Enabled() != now_.Watching,
            "Start and Stop");
  }

  static std::string Untimed(const std::string& line) {
    return line.substr(std::min(line.find(" - Cookie"), line.size()));
  }

  void CheckLog() {
    const int expectedCount = lines_ + static_cast<int>(now_.Log.size());
    if (form_.ListLog.ListCount() != expectedCount) return Require(false, "the log's length");
    for (const std::string& expected : std::exchange(now_.Log, {})) {
      Require(Untimed(form_.ListLog.List(lines_++)) == expected, "a line of the log");
      if (now_.SaveLog) saved_ += expected + "\r\n";
    }
  }

  void CheckRows(platform::ListView& list, const model::List& expected, const std::string& what) {
    const int count = static_cast<int>(expected.Rows.size());
    Require(list.Count() == count, what + "'s length");
    for (int position = 1; position <= std::min(count, list.Count()); ++position) {
      const platform::ListView::ListItem item = list.Item(position);
      const Row& row = expected.Rows[static_cast<std::size_t>(position - 1)];
      bool same = item.Text() == row.Cells[0] && item.Selected() == row.Selected;
      for (int i = 1; i < 7; ++i) {
        same = same && item.SubItems(i) == row.Cells.at(static_cast<std::size_t>(i));
      }
      if (!same) return Require(false, what + "'s row " + std::to_string(position));
    }
  }

  int Pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  template <typename Thing>
  const Thing& Any(const std::vector<Thing>& things) {
    return things[static_cast<std::size_t>(Pick(static_cast<int>(things.size())))];
  }
  std::pair<platform::ListView*, model::List*> AnyList() {
    if (Pick(2) == 0) return {&form_.ListVSearch, &now_.Search};
    return {&form_.ListVCookie, &now_.Cookies};
  }

  const int seed_;
  const bool withWindows_;  ///< Popups and detail windows open, and are closed after each step.
  std::mt19937 random_;
  CookieFolder folder_;
  FormMain form_;
  model::Program now_;
  QTimer answer_;
  int steps_ = 0;
  int step_ = 0, touches_ = 0;
  bool done_ = false;
  bool busy_ = false;      ///< A step is on the stack that does not begin a watch.
  bool stopping_ = false;  ///< A click on Stop is on the stack.
  int within_ = 0;
  model::List* asked_ = nullptr;  ///< The list of which the question is; none for the cleaner's.
  std::set<std::string> gone_;    ///< Files that the step deletes.
  int lines_ = 0;
  int details_ = 0;  ///< That the user asked for.
  std::map<QString, int> closed_;
  std::string saved_;  ///< The log file without its times.
};

// MODEL_SEED and MODEL_STEPS replay one run; MODEL_RUNS makes as many.
TEST(Model, TheProgramDoesWhatAPlainModelOfItSays) {
  const int first = FromEnvironment("MODEL_SEED", 1);
  const int steps = FromEnvironment("MODEL_STEPS", 1000);
  const int runs = FromEnvironment("MODEL_RUNS", std::getenv("MODEL_SEED") != nullptr ? 1 : 30);
  const auto usual = fs::temp_directory_path();
  for (int seed = first; seed < first + runs && !HasFailure(); ++seed) {
    // Directories of memory and of a disk have orders of their own.
    const bool inMemory = seed % 2 == 0 && fs::is_directory("/dev/shm");
    qputenv("TMPDIR", inMemory ? "/dev/shm" : usual.c_str());
    ModelRun(seed).Go(steps);
  }
  qputenv("TMPDIR", usual.c_str());
}

// ENDURANCE_STEPS=450000 is the work of a month.
TEST(Endurance, HoldsNoMoreAfterAMonthsWork) {
  ModelRun month(FromEnvironment("MODEL_SEED", 1), true);
  month.Go(FromEnvironment("ENDURANCE_STEPS", 5000));
  std::printf("%d changes, %d reports with a popup each, %d rebuilds, %d starts\n", month.Changes,
              month.Reports, month.Rebuilds, month.Starts);
  for (const Held& held : {month.Before, month.After}) {
    std::printf("%ld descriptors, %ld threads, %ld windows, %ld kB\n", held[0], held[1], held[2],
                held[3]);
  }
  if (HasFailure()) return;
  constexpr long Pooled = 2;  // threads that the toolkit begins and ends, each with a descriptor
  EXPECT_LE(month.After[0], month.Before[0] + Pooled);
  EXPECT_LE(month.After[1], month.Before[1] + Pooled);
  EXPECT_EQ(month.After[2], month.Before[2]);
#ifndef __SANITIZE_ADDRESS__  // which keeps back what is freed
  // In kB; a line of the log, with long names among them, takes up to 300 bytes.
  EXPECT_LT(month.After[3] - month.Before[3], 1500 + month.Reports * 300 / 1024);
#endif
}

}  // namespace
