#include <set>
#include <string>
#include <vector>

#include <QDir>
#include <QRegularExpression>
#include <gtest/gtest.h>

TEST(Help, EveryPageIsReachedAndEveryPictureIsThere) {
  const QDir folder(QUILLMERE_HELP_DIR);
  std::set<QString> reached{"index.html"};
  std::vector<QString> toRead{"index.html"};
  while (!toRead.empty()) {
    QFile file(folder.filePath(toRead.back()));
    toRead.pop_back();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    static const QRegularExpression Link("(?:href|src)=\"([^\":]*)\"");
    for (auto match = Link.globalMatch(QString::fromUtf8(file.readAll())); match.hasNext();) {
      const QString target = match.next().captured(1);
      if (reached.insert(target).second && target.endsWith(".html")) toRead.push_back(target);
    }
  }
  std::set<QString> there;
  for (const QString& page : folder.entryList({"*.html"})) there.insert(page);
  for (const QString& picture : QDir(folder.filePath("pictures")).entryList({"*.png"})) {
    there.insert("pictures/" + picture);
  }
  EXPECT_EQ(reached, there);
}
