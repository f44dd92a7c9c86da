#include "platform/linux/CutText.h"

#include <QStringList>
#include <QToolTip>

namespace platform {

void ShowWholeText(const QString& text, const QPoint& global, QWidget& widget, const QRect& place) {
  if (text.isEmpty()) return QToolTip::hideText();
  // Left to itself the tooltip would read markup out of the text, and be as wide as it is long.
  constexpr int CharactersPerLine = 100;
  QStringList lines;
  for (int i = 0; i < text.size(); i += CharactersPerLine) {
    lines.append(text.mid(i, CharactersPerLine).toHtmlEscaped());
  }
  const QString page = QStringLiteral("<p style='white-space:pre'>%1</p>").arg(lines.join('\n'));
  QToolTip::showText(global, page, &widget, place);
}

}  // namespace platform
