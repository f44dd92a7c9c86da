#include "monitor/WatchControl.h"

#include "core/PublicDim.h"
#include "monitor/ScanDisk.h"
#include "monitor/WatchFlags.h"
#include "monitor/WatchFunc.h"

namespace {

void ShowWatching(const WatchControls& controls, bool watching) {
  platform::CommandButton& next = watching ? controls.CmdStop : controls.CmdStart;
  platform::CommandButton& last = watching ? controls.CmdStart : controls.CmdStop;
  next.Enabled(true);
  // A second press of the key that clicked takes back the first; it is no click on a third button.
  if (last.HasFocus()) next.SetFocus();
  last.Enabled(false);
}

/// One watch from its first scan to its end.
void RunOneWatch(const WatchControls& controls) {
  WatchFlags.StartRequested = false;
  WatchFlags.StopRequested = false;
  ShowWatching(controls, true);
  PublicDim.FirstScanRunning = true;
  TakeFirstSnapshot();
  PublicDim.FirstScanRunning = false;
  if (!WatchFlags.StopRequested) return StartWatch(PublicDim.CookieDir);
  PublicDim.WatchStopping = true;
}

}  // namespace

void StartClicked(const WatchControls& controls) {
  if (PublicDim.FirstScanRunning) {
    WatchFlags.StopRequested = false;
    return ShowWatching(controls, true);
  }
  if (WatchFlags.WatchOnStack || WatchFlags.ScanRunning || platform::InsideMsgBox()) {
    WatchFlags.StartRequested = true;
    ShowWatching(controls, true);
    // The loop of the last watch starts the next one when control comes back to it. Without one,
    // the scan belongs to a timer's tick, and a watch that ran inside that tick would keep the
    // timer from ever ticking again. One inside a message box would keep back its answer.
    if (!WatchFlags.WatchOnStack) controls.TimerStart.Enabled(true);
    return;
  }
  WatchFlags.WatchOnStack = true;
  do {
    RunOneWatch(controls);
  } while (WatchFlags.StartRequested);
  WatchFlags.WatchOnStack = false;
}

void StopClicked(const WatchControls& controls) {
  if (WatchFlags.StartRequested) {
    WatchFlags.StartRequested = false;
    return ShowWatching(controls, false);
  }
  if (PublicDim.FirstScanRunning) {
    WatchFlags.StopRequested = true;
    return ShowWatching(controls, false);
  }
  StopWatch();
  // A start that came inside the stop's own yield came after a second stop there, and holds.
  ShowWatching(controls, WatchFlags.StartRequested);
}

void StartTick(const WatchControls& controls) {
  controls.TimerStart.Enabled(false);
  if (WatchFlags.StartRequested) StartClicked(controls);
}

void CompareTick(DifferenceReports& reports) {
  if (!PublicDim.ChangePending || WatchFlags.ScanRunning) return;
  PublicDim.ChangePending = false;
  CompareSnapshots(reports);
  PublicDim.CookieListStale = true;
}
