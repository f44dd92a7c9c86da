#pragma once

#include <QPlainTextEdit>
#include <QString>

namespace platform {

/// Lines of any length. The toolkit takes time and memory by the length of each block of text in
/// sight, so a line much longer than any browser's cookie goes on in the next block, which shows as
/// a line of its own; reading and copying give it in one.
class LinesEdit : public QPlainTextEdit {
 public:
  explicit LinesEdit(QWidget* parent);

  /// A locked text has its caret all the same.
  void Lock(bool readOnly);
  void SetLines(const QString& text);
  QString Lines() const;

 protected:
  bool event(QEvent* event) override;
  /// A press on the selection begins a new one. A drag of the old one would run events in a loop of
  /// its own, in which the window could close and be freed.
  void mousePressEvent(QMouseEvent* event) override;
  QMimeData* createMimeDataFromSelection() const override;

 private:
  QString Between(int begin, int end) const;
};

}  // namespace platform
