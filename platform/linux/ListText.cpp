#include "platform/linux/ListText.h"

#include <algorithm>

#include "platform/linux/Widgets.h"

namespace platform {

namespace {

constexpr char16_t Delete = 0x7F;
constexpr char16_t FirstPicture = 0x2400;

bool IsControl(QChar character) {
  const char16_t code = character.unicode();
  return code < u' ' || (code >= Delete && code < 0xA0) || code == QChar::LineSeparator ||
         code == QChar::ParagraphSeparator;
}

QChar Picture(QChar control) {
  const char16_t code = control.unicode();
  if (code < u' ') return QChar(static_cast<char16_t>(FirstPicture + code));
  if (code == Delete) return QChar(u'\u2421');
  return code < 0xA0 ? QChar(QChar::ReplacementCharacter) : QChar(u'\u2424');
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

}  // namespace platform
