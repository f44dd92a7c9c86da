#include "platform/linux/TypedSearch.h"

#include <algorithm>

#include <QApplication>

namespace platform {

int TypedSearch::Find(const QString& typed, int count, int current, bool currentIsSelected,
                      const std::function<QString(int)>& text) {
  const bool goesOn =
      typedAt_.isValid() && typedAt_.elapsed() <= QApplication::keyboardInputInterval();
  typedAt_.start();
  const bool again = goesOn && typed_ == typed;  // the same letter again: its next row
  if (!goesOn) typed_.clear();
  if (!again) typed_ += typed;

  const bool staysOnMatch = goesOn && !again;
  const int start = std::max(0, staysOnMatch || !currentIsSelected ? current : current + 1);
  for (int i = 0; i < count; ++i) {
    const int row = (start + i) % count;
    if (text(row).startsWith(typed_, Qt::CaseInsensitive)) return row;
  }
  return -1;
}

}  // namespace platform
