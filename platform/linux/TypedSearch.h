#pragma once

#include <functional>

#include <QElapsedTimer>
#include <QString>

namespace platform {

/// The way to a row by typing the beginning of its text.
class TypedSearch {
 public:
  /// The row that what has been typed so far leads to from `current`, or -1. `current` itself may
  /// be the answer while the typing of one text goes on, and where it is not selected.
  int Find(const QString& typed, int count, int current, bool currentIsSelected,
           const std::function<QString(int)>& text);

 private:
  QString typed_;
  QElapsedTimer typedAt_;
};

}  // namespace platform
