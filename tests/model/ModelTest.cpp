#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "monitor/WatchFlags.h"
#include "tests/model/Model.h"
#include "tests/support/Application.h"
#include "tests/support/CookieFolder.h"
#include "tests/support/Yields.h"
#include "ui/FormMain.h"

namespace fs = std::filesystem;
using model::Row;

namespace {

int FromEnvironment(const char* name, int usual) {
  const char* const value = std::getenv(name);
  return value != nullptr ? std::stoi(value) : usual;
}

const std::string Long(251, 'n');
const std::vector<std::string> FileNames = [] {
  std::vector<std::string> names = {"a.txt",       "A.TXT",       "\xC3\xA4.txt", "\xC3\x84.txt",
                                    Long + ".txt", Long + ".TXT", ".hidden.txt",  ".txt",
                                    "other.dat",   "a.txt.bak",   "c1.txt",       "c2.txt",
                                    "c3.txt",      "c4.txt"};
  for (const auto& [odd, shown] : machine::OddNames()) names.push_back(odd);
  return names;
}();
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

/// One run: random steps, each within a yield of the program, which then must be as the model says.
class ModelRun {
 public:
  explicit ModelRun(int seed, bool withWindows = false)
      : seed_(seed),
        withWindows_(withWindows),
        random_(static_cast<unsigned>(seed)),
        folder_(PlaceOf(seed)) {
    now_.Folder = folder_.Path("user/cookies/");
    for (const char* made : {"user/cookies", "log"}) fs::create_directories(folder_.Native(made));
    folder_.Write("outside/target", Contents[3]);
    KeepCookiesIn(folder_.Path("user/cookies"));
    answer_.Tick = [this] { Answer(); };
    closing_.Tick = [this] { CloseWindows(); };
    for (int i = Pick(12); i > 0; --i) ChangeFolder();
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
    long Memory = 0;  ///< In kB.
  };
  Holding Before, After;  ///< While it watches: after the first thousand steps, and after all.
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
    if (!machine::ToldExactly && PublicDim.ChangePending) now_.Pending = true;
    Require(PublicDim.ChangePending == now_.Pending, "whether a change is pending");
    if (IsOver() || testing::Test::HasFailure()) return Finish();
    ++step_;
    Step();
  }

  void Measure() {
    if (now_.Notification != model::Handle::Live) return;
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
    if (kind >= 40) Require(Entries() == left, "the folder's files");
    busy_ = false;
  }

  void Finish() {
    done_ = true;
    std::string saved;
    for (const auto& file : fs::directory_iterator(folder_.Native("log"))) {
      std::ifstream stream(file.path(), std::ios::binary);
      for (std::string line; std::getline(stream, line);) saved += Untimed(line) + '\n';
    }
    Require(saved == saved_, "the log file");
    Require(AllWindowsClose(), "the number of popups and detail windows");
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
        if (row.Selected) Deleted(model::Meant(row.Cells[4], Entries()));
      }
      std::erase_if(asked_->Rows, [](const Row& row) { return row.Selected; });
    } else if (yes) {
      Cleaned();
    }
    machine::PressInBox(yes ? platform::IDYES : platform::IDNO);
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

  // --- The folder --------------------------------------------------------------------------------

  void ChangeFolder() {
    const int kind = Pick(100);
    if (!now_.IsThere() || kind == 0) return ChangeWholeFolder();
    const std::string name = AsItStands(Any(FileNames));
    const std::string file = now_.Folder + name;
    const machine::Facts facts = machine::FactsOf(file);
    bool changed = facts.Exists;
    if (kind < 40) {
      const std::string& content = Any(Contents);
      if (facts.Exists && (!facts.IsWritable || content.empty())) return;
      std::ofstream(machine::NativePath(file), std::ios::binary) << content;
      if (name.starts_with('.') && Pick(2) == 0) machine::Hide(file);
      changed = true;
    } else if (kind < 52 && facts.IsPlain) {
      // Never back to an earlier time: between two waits that is no change.
      changed = Pick(4) != 0 && machine::TouchIsTold;
      if (changed || !machine::TouchIsTold) {
        machine::Touch(file, 1'100'000'000 + Pick(3), ++touches_);
      } else {
        machine::TouchInVain(file);
      }
    } else if (kind < 62 && facts.IsPlain) {
      const std::string& other = Any(FileNames);
      if (!machine::FactsOf(now_.Folder + other).IsPlain) return;
      changed = NamesChangeBy(file, now_.Folder + other);
    } else if (kind < 67 && facts.IsPlain) {
      const std::string twin = model::Folded(name);
      const bool taken = machine::CasesDiffer && machine::FactsOf(now_.Folder + twin).Exists;
      if (twin == name || taken) return;
      changed = NamesChangeBy(file, now_.Folder + twin);
    } else if (kind < 75) {
      const std::string away = folder_.Path("outside/") + name;
      const machine::Facts there = machine::FactsOf(away);
      if (facts.Exists == there.Exists) return;
      changed = Rename(facts.Exists ? file : away, facts.Exists ? away : file) &&
                !(facts.Exists ? facts : there).IsFolder;
    } else if (kind < 85 && facts.Exists) {
      std::error_code refused;
      changed = fs::remove(machine::NativePath(file), refused) && !facts.IsFolder;
    } else if (kind < 88 && facts.IsPlain) {
      changed = false;
      machine::ReadOnly(file, facts.MayGo);
    } else if (kind < 91 && !facts.Exists) {
      fs::create_directory(machine::NativePath(file));
    } else if (kind < 96 && !facts.Exists) {
      changed = machine::MakeOddity(file, static_cast<unsigned>(Pick(12)));
    } else {
      changed = false;
      folder_.Write("user/cookies/sub.txt/inner.txt");
      fs::remove(folder_.Native("user/cookies/sub.txt/inner.txt"));
    }
    now_.Changed = now_.Changed || changed;
    Changes += changed ? 1 : 0;
  }

  /// Where cases do not differ, another file's name may stand for one that is there.
  std::string AsItStands(const std::string& name) const {
    return machine::CasesDiffer ? name : model::Meant(name, Entries());
  }

  static bool Rename(const std::string& from, const std::string& to) {
    std::error_code refused;
    fs::rename(machine::NativePath(from), machine::NativePath(to), refused);
    return !refused;
  }

  /// Not every machine renames a file in case alone.
  bool NamesChangeBy(const std::string& from, const std::string& to) const {
    const std::set<std::string> before = Entries();
    return Rename(from, to) && Entries() != before;
  }

  /// Takes the watched folder away or brings one, sometimes both before anything can look.
  void ChangeWholeFolder() {
    const std::string folder = folder_.Path("user/cookies");
    const std::string aside = folder_.Path("user/aside");
    if (now_.IsThere()) {
      machine::RemoveFolder(aside + machine::Separator);
      if (!Rename(folder, aside)) return;
      now_.Gone = true;
      if (Pick(2) == 0) return;
    }
    if (Pick(2) == 0 && machine::FactsOf(aside).Exists) {
      Rename(aside, folder);
    } else {
      fs::create_directory(machine::NativePath(folder));
    }
  }

  std::set<std::string> Entries() const {
    std::set<std::string> names;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(machine::NativePath(now_.Folder), missing)) {
      names.insert(machine::PathText(entry.path().filename()));
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
    Require(machine::IsOnScreen(form_) == now_.Visible &&
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

  /// Directories of several file systems have orders of their own.
  static fs::path PlaceOf(int seed) {
    const std::vector<fs::path> places = machine::TemporaryPlaces();
    return places[static_cast<std::size_t>(seed) % places.size()];
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
  platform::Timer answer_{1, false};
  platform::Timer closing_{1, false};
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
  std::map<std::string, int> closed_;
  std::string saved_;  ///< The log file without its times.
};

// MODEL_SEED and MODEL_STEPS replay one run; MODEL_RUNS makes as many.
TEST(Model, TheProgramDoesWhatAPlainModelOfItSays) {
  const int first = FromEnvironment("MODEL_SEED", 1);
  const int steps = FromEnvironment("MODEL_STEPS", 1000);
  const int runs = FromEnvironment("MODEL_RUNS", std::getenv("MODEL_SEED") != nullptr ? 1 : 30);
  for (int seed = first; seed < first + runs && !HasFailure(); ++seed) ModelRun(seed).Go(steps);
}

// ENDURANCE_STEPS=450000 is the work of a month.
TEST(Endurance, HoldsNoMoreAfterAMonthsWork) {
  ModelRun month(FromEnvironment("MODEL_SEED", 1), true);
  month.Go(FromEnvironment("ENDURANCE_STEPS", 5000));
  std::printf("%d changes, %d reports with a popup each, %d rebuilds, %d starts\n", month.Changes,
              month.Reports, month.Rebuilds, month.Starts);
  if (HasFailure()) return;
  for (std::size_t i = 0; i < month.After.Things.size(); ++i) {
    const auto& [what, count, slack] = month.After.Things[i];
    const long before = month.Before.Things.at(i).Count;
    std::printf("%s: %ld, then %ld\n", what, before, count);
    EXPECT_LE(count, before + slack) << what;
  }
  std::printf("memory: %ld kB, then %ld kB\n", month.Before.Memory, month.After.Memory);
#ifndef __SANITIZE_ADDRESS__  // which keeps back what is freed
  // In kB; a line of the log, with long names among them, takes up to 300 bytes.
  EXPECT_LT(month.After.Memory - month.Before.Memory, 1500 + month.Reports * 300 / 1024);
#endif
}

}  // namespace
