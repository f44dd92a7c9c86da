#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "monitor/WatchFlags.h"
#include "tests/model/FolderChanges.h"
#include "tests/support/Application.h"
#include "tests/support/Yields.h"
#include "ui/FormMain.h"

namespace model {

inline const std::vector<std::string> SearchTexts = {"password", "  SHOP ", "",     "   ", "-",
                                                     "\xC3\x84", "txt",     "2004", "*",   "%3d"};

/// One run: random steps, each within a yield of the program, which then must be as the model says.
class ModelRun {
 public:
  explicit ModelRun(int seed, bool withWindows = false)
      : seed_(seed),
        withWindows_(withWindows),
        dice_(static_cast<unsigned>(seed)),
        folder_(dice_.Any(machine::TemporaryPlaces())) {  // each with an order of its own
    now_.Folder = folder_.Path("user/cookies/");
    std::filesystem::create_directories(folder_.Native("user/cookies"));
    std::filesystem::create_directories(folder_.Native("log"));
    folder_.Write("outside/target", Record("lang", "de", "news.example/"));
    KeepCookiesIn(folder_.Path("user/cookies"));
    answer_.Tick = [this] { Answer(); };
    closing_.Tick = [this] { CloseWindows(); };
    for (int i = Pick(12); i > 0; --i) changes_.Make();
  }

  void Go(int steps) {
    steps_ = steps;
    InYield = [this] { Yielded(); };
    SignalComes = [this] { return now_.SignalComes(); };
    now_.Requested = now_.Watching = true;
    form_.Load();
    while (!done_) platform::DoEvents();
    InYield = nullptr;
    SignalComes = nullptr;
  }

  struct Holding {
    std::vector<machine::Held> Things;
    machine::Held Memory{};
  };
  Holding Before, After;  ///< While it watches: after the first thousand steps, and after all.
  int Rebuilds = 0, Starts = 0, Reports = 0;
  int Changes() const { return changes_.Count(); }

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
    if (!machine::ToldExactly && PublicDim.ChangePending) now_.Pending = true;
    Require(PublicDim.ChangePending == now_.Pending, "whether a change is pending");
    if (IsOver() || testing::Test::HasFailure()) return Finish();
    ++step_;
    Step();
  }

  void Measure() {
    if (now_.Notification != Handle::Live) return;
    if (step_ >= 1000 && Before.Things.empty()) Before = HoldingNow();
    if (step_ >= steps_) After = HoldingNow();
  }

  Holding HoldingNow() {
    Require(AllWindowsClose(), "the number of popups and detail windows");
    return {machine::HeldNow(), machine::MemoryNow()};
  }

  /// A walk that is measured goes on until it watches.
  bool IsOver() const { return step_ >= steps_ && (!withWindows_ || !After.Things.empty()); }

  void CloseWindows() {
    for (const char* name : {"FormMsg", "FormView"}) {
      closed_[name] += static_cast<int>(machine::CloseForms(name).size());
    }
  }

  /// Those that lie under others come up when these have gone.
  bool AllWindowsClose() {
    const bool outer = std::exchange(busy_, true);
    const bool closed = machine::WaitFor([this] {
      CloseWindows();
      return closed_["FormMsg"] == (withWindows_ ? Reports : 0) && closed_["FormView"] == details_;
    });
    int turns = 20;  // in which they are freed
    machine::WaitFor([&turns] { return --turns == 0; });
    busy_ = outer;
    return closed;
  }

  /// The run's own ticks come at once, so the timers rest.
  void Prepare() {
    form_.TimerCompare.Enabled(false);
    form_.TimerCookie.Enabled(false);
    closing_.Enabled(withWindows_);
    machine::Paint(form_, seed_ % 8 == 0);
    PublicDim.MsgEnabled = withWindows_;
    PublicDim.AppPath = folder_.Path();
    PublicDim.LogDir = folder_.Path("log/");
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
    std::set<std::string> left = EntriesOf(now_.Folder);
    if (kind < 40) {
      for (int i = 1 + Pick(3); i > 0; --i) changes_.Make();
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
      answer_.Enabled(true);
      machine::ChooseEntry(search ? form_.MenuSearch : form_.MenuCookie, 1);
    } else if (kind < 93) {
      Clean();
    } else if (kind < 96) {
      ChangeWindow();
    } else {
      ChangeOption();
    }
    answer_.Enabled(false);
    Check();
    for (const std::string& name : gone_) left.erase(name);
    if (kind >= 40) Require(EntriesOf(now_.Folder) == left, "the folder's files");
    busy_ = false;
  }

  void Finish() {
    done_ = true;
    std::string saved;
    for (const auto& file : std::filesystem::directory_iterator(folder_.Native("log"))) {
      std::ifstream stream(file.path(), std::ios::binary);
      for (std::string line; std::getline(stream, line);) saved += Untimed(line) + '\n';
    }
    Require(saved == saved_, "the log file");
    if (form_.CmdStop.Enabled()) form_.CmdStop.Click();  // or a start that waits begins meanwhile
    Require(AllWindowsClose(), "the number of popups and detail windows");
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
    now_.Notification = Handle::None;
  }

  void Search() {
    const std::string& text = dice_.Any(SearchTexts);
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
    Require(!machine::IsMenuOpen(), "a menu for nothing");
    Pick(2) == 0 ? list->DblClick() : list->KeyPress('\r');
    details_ += expected->Rows.empty() ? 0 : 1;
  }

  void Clean() {
    form_.Check1.Value(1);
    asked_ = nullptr;
    answer_.Enabled(true);
    form_.CmdClean.Click();
  }

  /// Answers a question, and lets a tick pass while it is open.
  void Answer() {
    const std::optional<int> box = machine::OpenBox();
    if (!box) return;
    if (*box == platform::MB_OK) return machine::PressInBox(platform::IDOK);
    if (Pick(4) == 0) TickCompare();
    if (Pick(4) == 0) TickCookie();
    const bool yes = Pick(4) != 0;
    if (yes && asked_ != nullptr) {
      for (const Row& row : asked_->Rows) {
        if (row.Selected) Deleted(Meant(row.Cells[4], EntriesOf(now_.Folder)));
      }
      std::erase_if(asked_->Rows, [](const Row& row) { return row.Selected; });
    } else if (yes) {
      Cleaned();
    }
    machine::PressInBox(yes ? platform::IDYES : platform::IDNO);
  }

  void Cleaned() {
    for (const File& file : FilesIn(now_.Folder)) {
      if (IsReadable(now_.Folder, file[0])) Deleted(file[0]);
    }
    now_.Known.clear();
    now_.Log.emplace_back(" - Cookies are cleaned **********");
    now_.Stale = true;
  }

  void Deleted(const std::string& name) {
    if (!machine::FactsOf(now_.Folder + name).MayGo) return;
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
    Require(machine::IsOnScreen(form_) == now_.Visible &&
                (form_.WindowState() == platform::vbMinimized) == now_.Minimised,
            "the window");
  }

  void CheckButtons() {
    Require(form_.CmdStop.Enabled() == now_.Watching && form_.CmdStart.Enabled() != now_.Watching,
            "Start and Stop");
  }

  void CheckLog() {
    const int expectedCount = lines_ + static_cast<int>(now_.Log.size());
    if (form_.ListLog.ListCount() != expectedCount) return Require(false, "the log's length");
    for (const std::string& expected : std::exchange(now_.Log, {})) {
      Require(Untimed(form_.ListLog.List(lines_++)) == expected, "a line of the log");
      if (now_.SaveLog) saved_ += expected + "\r\n";
    }
  }

  void CheckRows(platform::ListView& list, const List& expected, const std::string& what) {
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

  int Pick(int count) { return dice_.Pick(count); }
  std::pair<platform::ListView*, List*> AnyList() {
    if (Pick(2) == 0) return {&form_.ListVSearch, &now_.Search};
    return {&form_.ListVCookie, &now_.Cookies};
  }

  const int seed_;
  const bool withWindows_;  ///< Popups and detail windows open, and are closed after each step.
  Dice dice_;
  CookieFolder folder_;
  FormMain form_;
  Program now_;
  FolderChanges changes_{dice_, folder_, now_};
  platform::Timer answer_{1, false};
  platform::Timer closing_{1, false};
  int steps_ = 0;
  int step_ = 0;
  bool done_ = false;
  bool busy_ = false;      ///< A step is on the stack that does not begin a watch.
  bool stopping_ = false;  ///< A click on Stop is on the stack.
  int within_ = 0;
  List* asked_ = nullptr;       ///< The list of which the question is; none for the cleaner's.
  std::set<std::string> gone_;  ///< Files that the step deletes.
  int lines_ = 0;
  int details_ = 0;  ///< That the user asked for.
  std::map<std::string, int> closed_;
  std::string saved_;  ///< The log file without its times.
};

}  // namespace model
