#pragma once

#include <string>

#include "core/Rows.h"
#include "platform/FileSearch.h"

// The picture of the cookie folder at one moment.

/// Fills `ScanRows` and `ScanRowCount` from a folder's cookie files. Yields once per entry, with
/// `ScanRunning` raised: no other scan may start until this one has ended. An empty folder text
/// changes nothing; a folder that cannot be read counts as one without cookie files.
void ScanCookieFolder(std::string folder);

/// Appends one row to `ScanRows`. `size` is in bytes, `modified` local.
void AddSnapshotRow(const std::string& fileName, double size, const platform::SYSTEMTIME& modified);

/// Scans the cookie folder and returns what it found, or the placeholder row. A scan during which
/// the cleaner emptied the baseline is void and is made again.
Snapshot TakeSnapshot();

/// Makes a fresh snapshot the baseline, without any report.
void TakeFirstSnapshot();
