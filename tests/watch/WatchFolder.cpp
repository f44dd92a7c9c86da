// watch_folder FOLDER: takes a snapshot of a folder of cookie files, watches it as the program does
// and prints what is reported, a line a report. Ends when "end.txt" is added.

#include <cstdio>
#include <string>

#include "core/PublicDim.h"
#include "monitor/Comparison.h"
#include "monitor/ScanDisk.h"
#include "platform/Application.h"
#include "platform/ChangeNotification.h"
#include "tests/support/Machine.h"

namespace {

class PrintedReports : public DifferenceReports {
 public:
  void ReportModified(std::size_t oldRow, std::size_t newRow) override {
    const CookieFileRow& before = PublicDim.KnownRows[oldRow];
    const CookieFileRow& now = PublicDim.CurrentRows[newRow];
    if (before.SizeText != now.SizeText || before.ModifiedText != now.ModifiedText) {
      Print("modified", now);
    }
  }
  void ReportAdded(std::size_t newRow) override {
    Print("added", PublicDim.CurrentRows[newRow]);
    ended_ = ended_ || PublicDim.CurrentRows[newRow].FileName == "end.txt";
  }
  void ReportRemoved(std::size_t oldRow) override { Print("removed", PublicDim.KnownRows[oldRow]); }

  bool Ended() const { return ended_; }

 private:
  static void Print(const char* what, const CookieFileRow& row) {
    std::printf("%s %s\n", what, std::string(row.FileName).c_str());
  }

  bool ended_ = false;
};

}  // namespace

int main(int, char** argv) {
  machine::WriteBytesAsTheyAre();
  PublicDim.CookieDir = std::string(argv[1]).append(platform::PathSeparator);
  const platform::HANDLE watch = platform::FindFirstChangeNotificationA(
      PublicDim.CookieDir, 0,
      platform::FILE_NOTIFY_CHANGE_FILE_NAME | platform::FILE_NOTIFY_CHANGE_LAST_WRITE);
  TakeFirstSnapshot();
  std::puts("watching");
  PrintedReports reports;
  while (!reports.Ended()) {
    std::fflush(stdout);
    constexpr std::uint32_t Wait = 100;
    constexpr std::uint32_t Tick = 500;
    if (platform::WaitForSingleObject(watch, Wait) != platform::WAIT_OBJECT_0) continue;
    platform::FindNextChangeNotification(watch);
    platform::WaitForSingleObject(platform::INVALID_HANDLE_VALUE, Tick);
    CompareSnapshots(reports);
  }
}
