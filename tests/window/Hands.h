#pragma once

#include <string>
#include <vector>

#include "platform/Forms.h"
#include "platform/ListView.h"

// A user's hands on the lists, and eyes: one source a machine. Rows and columns count from 0.

namespace hands {

/// `Shift` as in `Form::Accelerator`.
struct Click {
  int Button = 1;
  int Shift = 0;
};

/// -1 is the room below the rows.
void ClickRow(const platform::ListView& list, int row, const Click& click = {});
void DoubleClickRow(const platform::ListView& list, int row);

/// A `quick` click is one of which the machine says that it is the second of a double one.
void ClickHeader(const platform::ListView& list, int column, int button = 1, bool quick = false);
void MoveFirstColumn(const platform::ListView& list, int to);

/// Presses Ctrl+C, and returns what is in the clipboard then.
std::string Copied(const platform::Control& list);

int TopRow(const platform::Control& list);
void TopRow(const platform::Control& list, int row);

void SelectLines(const platform::ListBox& list, const std::vector<int>& lines);
std::vector<int> SelectedLines(const platform::ListBox& list);

}  // namespace hands
