#include "platform/linux/CutText.h"

#include <QStringList>
#include <QToolTip>

namespace platform {

QString ToolTipPage(const QString& text) {
  constexpr int CharactersPerLine = 100;
  constexpr int MostCharacters = 2000;
  const QString shown = text.size() > MostCharacters ? text.left(MostCharacters) + u'\u2026' : text;
  QStringList lines;
  for (int i = 0; i < shown.size(); i += CharactersPerLine) {
    lines.append(shown.mid(i, CharactersPerLine).toHtmlEscaped());
  }
  return QStringLiteral("<p style='white-space:pre'>%1</p>").arg(lines.join('\n'));
}

void ShowWholeText(const QString& text, const QPoint& global, QWidget& widget, const QRect& place) {
  if (text.isEmpty()) return QToolTip::hideText();
  QToolTip::showText(global, ToolTipPage(text), &widget, place);
}

}  // namespace platform
