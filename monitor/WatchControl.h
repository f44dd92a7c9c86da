#pragma once

#include "monitor/Comparison.h"
#include "platform/Forms.h"

// Start, Stop and the tick that serves a change, and the rules that keep two scans apart.
//
// A click can land in any yield, so also inside a scan or in a wait loop that is about to end. What
// cannot be carried out there is noted in `PublicDim` and carried out right after; the buttons
// always tell the state that the clicks so far lead to.

/// The controls that a watch is run by.
struct WatchControls {
  platform::CommandButton& CmdStart;
  platform::CommandButton& CmdStop;
  platform::Timer& TimerStart;  ///< Carries out a noted start from the plain event loop.
};

/// Takes the baseline and watches; does not return while the watch runs, unless the start had to be
/// noted: inside a scan or a message box, or while the last watch's loop is still on the stack.
void StartClicked(const WatchControls& controls);

/// Ends the watch, or a start not carried out yet. Inside the first scan the stop is noted and
/// honoured at the scan's end, unless a start takes it back.
void StopClicked(const WatchControls& controls);

/// Tick of `TimerStart`: a noted start, or one more tick later.
void StartTick(const WatchControls& controls);

/// Tick of `TimerCompare`: one comparison when a change is pending and no scan is under way.
void CompareTick(DifferenceReports& reports);
