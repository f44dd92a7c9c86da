#pragma once

#include <QHeaderView>

namespace platform {

/// Headers that can be dragged to another place or width. A click, also the second of two quick
/// ones, is told by `sectionClicked` or `sectionDoubleClicked`, and of the left button alone.
class ColumnHeaders : public QHeaderView {
 public:
  explicit ColumnHeaders(QWidget* parent);

 protected:
  void mouseDoubleClickEvent(QMouseEvent* event) override;
};

}  // namespace platform
