#include "platform/common/Region.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include "platform/common/CodePage.h"

namespace platform {
namespace {

/// Applies `change` to what stands outside of quotes in a date or time format.
template <typename Change>
QString ChangeUnquoted(const QString& format, Change change) {
  QStringList parts = format.split(u'\'');
  for (qsizetype i = 0; i < parts.size(); i += 2) change(parts[i]);
  return parts.join(u'\'');
}

/// A time of the toolkit's as a picture. The zone goes together with what set it apart; "B" (part
/// of the day) is not known to the toolkit, which would print the letter.
std::string TimePicture(const QString& format) {
  QString picture = ChangeUnquoted(format, [](QString& part) {
    part.remove(u't');
    part.remove("()");
    part.remove("[]");
    part.replace("B", "AP ");
    for (const char* half : {"AP", "Ap", "aP", "ap"}) part.replace(half, "tt");
  });
  picture = picture.trimmed();
  while (picture.endsWith(u',')) picture.chop(1);
  return picture.toStdString();
}

void TellNames(const QLocale& locale, Region& region) {
  region.Morning = locale.amText().toStdString();
  region.Afternoon = locale.pmText().toStdString();
  for (int month = 1; month <= 12; ++month) {
    const auto at = static_cast<std::size_t>(month - 1);
    region.Months[at] = locale.monthName(month).toStdString();
    region.ShortMonths[at] = locale.monthName(month, QLocale::ShortFormat).toStdString();
  }
  for (int day = 1; day <= 7; ++day) {
    const auto at = static_cast<std::size_t>(day - 1);
    region.Days[at] = locale.dayName(day).toStdString();
    region.ShortDays[at] = locale.dayName(day, QLocale::ShortFormat).toStdString();
  }
}

Region ReadRegion() {
  const QLocale locale = QLocale::system();
  Region region;
  region.Group = locale.groupSeparator().toStdString();
  region.Decimal = locale.decimalPoint().toStdString();
  region.ShortDate = locale.dateFormat(QLocale::ShortFormat).toStdString();
  region.LongTime = TimePicture(locale.timeFormat(QLocale::LongFormat));
  region.ShortTime = TimePicture(locale.timeFormat(QLocale::ShortFormat));
  TellNames(locale, region);
  const QList<uint> zero = locale.zeroDigit().toUcs4();
  if (!zero.empty()) region.Zero = zero.front();
  return region;
}

}  // namespace

const Region& UserRegion() {
  static const Region region = ReadRegion();
  return region;
}

char32_t FoldedCharacter(char32_t character) { return QChar::toCaseFolded(character); }

std::string TextFromOldCodePage(std::string_view bytes) { return TextFromWindows1252(bytes); }

}  // namespace platform
