#include <QApplication>
#include <QDir>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <gtest/gtest.h>

#include "platform/Shell.h"

namespace {

const QString HelpFolder = QStringLiteral(QUILLMERE_HELP_DIR);

std::uint32_t OpenHelp(const QString& path) {
  return platform::HtmlHelpA(0, path.toStdString(), platform::HH_DISPLAY_TOPIC, 0);
}

QList<QWidget*> HelpWindows() {
  QList<QWidget*> found;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isVisible() && window->windowTitle().endsWith(" Help")) found.append(window);
  }
  return found;
}

QString Contents(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList Targets(const QString& page, const QString& attribute) {
  QStringList targets;
  const QRegularExpression pattern(attribute + "=\"([^\"]*)\"");
  for (auto match = pattern.globalMatch(page); match.hasNext();) {
    targets.append(match.next().captured(1));
  }
  return targets;
}

}  // namespace

TEST(Help, EveryPageIsReachedAndEveryPictureIsThere) {
  const QDir folder(HelpFolder);
  QSet<QString> reached{"index.html"};
  QSet<QString> pictures;
  QStringList toRead{"index.html"};
  while (!toRead.isEmpty()) {
    const QString name = toRead.takeFirst();
    const QString page = Contents(folder.filePath(name));
    EXPECT_FALSE(page.isEmpty()) << name.toStdString();
    for (const QString& target : Targets(page, "href")) {
      if (target.contains(':') || reached.contains(target)) continue;
      reached.insert(target);
      toRead.append(target);
    }
    for (const QString& target : Targets(page, "src")) pictures.insert(target);
  }
  const auto files = [&folder](const QString& below, const QString& pattern) {
    QSet<QString> names;
    for (const QString& name : QDir(folder.filePath(below)).entryList({pattern}, QDir::Files)) {
      names.insert(below + name);
    }
    return names;
  };
  EXPECT_EQ(reached, files("", "*.html"));
  EXPECT_EQ(pictures, files("pictures/", "*.png"));
}

TEST(Help, OneWindowThatOpensAgainAfterItWasClosed) {
  const QString path = HelpFolder + ".chm";
  const std::uint32_t first = OpenHelp(path);
  ASSERT_NE(first, 0U);
  ASSERT_EQ(HelpWindows().size(), 1);
  const QPointer<QWidget> window = HelpWindows().first();
  auto* pages = window->findChild<QTextBrowser*>();
  const auto page = [pages] { return pages->source().fileName(); };
  EXPECT_EQ(page(), "index.html");

  pages->setSource(QUrl("log.html"));
  EXPECT_EQ(page(), "log.html");
  QTest::keyClick(pages, Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(page(), "index.html");
  QTest::keyClick(pages, Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(page(), "log.html");

  window->showMinimized();
  EXPECT_EQ(OpenHelp(path), first);
  EXPECT_EQ(HelpWindows().size(), 1);
  EXPECT_EQ(page(), "index.html");
  EXPECT_FALSE(window->isMinimized());

  ASSERT_TRUE(QTest::qWaitForWindowActive(window));
  QTest::keyClick(pages, Qt::Key_Escape);
  EXPECT_TRUE(HelpWindows().isEmpty());
  EXPECT_NE(OpenHelp(path), 0U);
  EXPECT_EQ(HelpWindows().size(), 1);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(window.isNull());
  HelpWindows().first()->close();
}

TEST(Help, NoWindowWhereThereIsNoHelp) {
  const QTemporaryDir empty;
  for (const QString& path : {empty.filePath("help.chm"), HelpFolder, QString()}) {
    EXPECT_EQ(OpenHelp(path), 0U) << path.toStdString();
  }
  EXPECT_EQ(platform::HtmlHelpA(0, HelpFolder.toStdString() + ".chm", 1, 0), 0U);
  EXPECT_TRUE(HelpWindows().isEmpty());
}
