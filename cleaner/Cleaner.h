#pragma once

#include <cstdint>

#include "platform/Forms.h"

// Clearing of the cookie folder, the recent documents and the recycle bin on the user's request.

/// The values of the three check boxes: a step runs when its own is 1.
struct CleanerChoice {
  int Cookies = 0;          ///< `Check1`
  int RecentDocuments = 0;  ///< `Check2`
  int RecycleBin = 0;       ///< `Check3`
};

/// Asks, clears what is chosen and tells of it in a box; a choice of nothing does nothing. Files
/// that can't be deleted stay without a word. `window` is the main window.
void Clean(const CleanerChoice& choice, platform::ListBox& log, std::uint32_t window);

/// Empties the recycle bin on all drives, without any question, window or sound of the desktop's.
void EmptyRecycleBin(std::uint32_t window);
