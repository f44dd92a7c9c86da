#pragma once

#include <string>

/// Adds a line, which comes without a line end, to the log file of today's local date, when the
/// option `SaveLog` is on. The file is opened and closed within the call; a failure loses the line
/// without a word.
void WriteLogFile(const std::string& line);
