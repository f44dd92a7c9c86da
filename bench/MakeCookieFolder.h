#pragma once

#include <string>

/// Fills an empty folder with cookie files of one to four cookies, two and a half on average. The
/// same count gives the same files.
void MakeCookieFolder(const std::string& folder, int files);
