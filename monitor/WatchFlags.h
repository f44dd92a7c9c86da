#pragma once

/// What keeps two scans, and two wait loops, apart. They outlast any one call, as `PublicDim` does.
struct WatchState {
  bool ScanRunning = false;     ///< A scan is on the stack.
  bool WatchOnStack = false;    ///< `CmdStart_Click` is on the stack, first scan or wait loop.
  bool StartRequested = false;  ///< A start waits for the plain loop or for the old loop to end.
  bool StopRequested = false;   ///< A stop waits for the end of the first scan.
};

inline WatchState WatchFlags;
