#pragma once

#include "platform/Forms.h"

// Clearing of the cookie folder, the recent documents and the recycle bin on the user's request.

/// The check boxes: a step runs when its own has the value 1 at that moment.
struct CleanerBoxes {
  const platform::CheckBox& Check1;  ///< Cookies.
  const platform::CheckBox& Check2;  ///< Recent documents.
  const platform::CheckBox& Check3;  ///< Recycle bin.
};

/// Asks, clears what is ticked and tells of it in a box; does nothing when nothing is ticked. Files
/// that can't be deleted stay without a word.
void Clean(const CleanerBoxes& boxes, platform::ListBox& log);

/// Empties the recycle bin on all drives, without any question, window or sound of the desktop's.
void EmptyRecycleBin();
