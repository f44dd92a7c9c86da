#include <QDir>
#include <QRegularExpression>
#include <gtest/gtest.h>

TEST(Help, EveryPageIsReachedAndEveryPictureIsThere) {
  const QDir folder(QUILLMERE_HELP_DIR);
  QStringList reached{"index.html"};
  for (qsizetype i = 0; i < reached.size(); ++i) {
    QFile file(folder.filePath(reached[i]));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << reached[i].toStdString();
    static const QRegularExpression Link("(?:href|src)=\"([^\":]*)\"");
    for (const auto& match : Link.globalMatch(QString::fromUtf8(file.readAll()))) {
      if (!reached.contains(match.captured(1))) reached.append(match.captured(1));
    }
  }
  QStringList there = folder.entryList({"*.html"});
  for (const QString& picture : QDir(folder.filePath("pictures")).entryList({"*.png"})) {
    there.append("pictures/" + picture);
  }
  reached.sort();
  there.sort();
  EXPECT_EQ(reached, there);
}
