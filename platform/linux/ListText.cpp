#include "platform/linux/ListText.h"

#include <algorithm>

#include "platform/linux/Widgets.h"

namespace platform {

namespace {

constexpr char16_t Delete = 0x7F;
constexpr char16_t FirstPicture = 0x2400;
// In a document of the toolkit's these two stand for the ends of a frame, each on a line of its
// own.
constexpr char16_t FrameBegins = 0xFDD0;
constexpr char16_t FrameEnds = 0xFDD1;

bool IsControl(QChar character) {
  const char16_t code = character.unicode();
  return code < u' ' || (code >= Delete && code < 0xA0) || code == QChar::LineSeparator ||
         code == QChar::ParagraphSeparator || code == FrameBegins || code == FrameEnds;
}

QChar Picture(QChar control) {
  const char16_t code = control.unicode();
  if (code < u' ') return QChar(static_cast<char16_t>(FirstPicture + code));
  if (code == Delete) return QChar(u'\u2421');
  const bool endsLine = code == QChar::LineSeparator || code == QChar::ParagraphSeparator;
  return endsLine ? QChar(u'\u2424') : QChar(QChar::ReplacementCharacter);
}

}  // namespace

QString DisplayText(std::string_view bytes) {
  QString text = FromText(bytes);
  if (std::none_of(text.cbegin(), text.cend(), IsControl)) return text;
  for (QChar& character : text) {
    if (IsControl(character)) character = Picture(character);
  }
  return text;
}

QString DisplayLines(std::string_view bytes) {
  QString text = FromText(bytes).replace(QLatin1String("\r\n"), QLatin1String("\n"));
  for (QChar& character : text) {
    if (character == u'\r') character = u'\n';
    const bool stays = character == u'\n' || character == u'\t';
    if (!stays && IsControl(character)) character = Picture(character);
  }
  return text;
}

}  // namespace platform
