#pragma once

#include <cstdint>
#include <string>

#include "platform/Handle.h"

// The wait for a change in the cookie folder. The waits yield after every 100 milliseconds at most;
// all else that the program does runs inside those yields while a watch runs.

/// Opens the watch on a folder and does not return while it runs. Every signal raises
/// `ChangePending`.
void StartWatch(const std::string& folder);

/// Closes the watch. The wait loop below on the stack ends when control comes back to it.
void StopWatch();

/// Waits until the handle is signalled or the watch stops. The last wait's result, 0 for signalled.
/// `handle` is read afresh at each wait.
std::uint32_t WaitFirstChange(const platform::HANDLE& handle, std::uint32_t milliseconds);

/// Re-arms the handle and waits likewise. False when signalled, true when a stop ended the wait.
bool WaitNextChange(const platform::HANDLE& handle, std::uint32_t milliseconds);

/// Raises `WatchStopping`, yields once and closes the handle, read afresh behind the yield.
void CloseWatchHandle(const platform::HANDLE& handle);
