#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <QFile>
#include <QIcon>
#include <QImage>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

#include "platform/Sound.h"

namespace {

/// The images of an icon file as pairs of pixel size and bits a pixel, by its own directory.
std::vector<std::pair<int, int>> ImagesOf(const QString& name) {
  QFile file(name);
  if (!file.open(QIODevice::ReadOnly)) return {};
  const QByteArray bytes = file.readAll();
  const auto number = [&bytes](qsizetype place) {
    return qFromLittleEndian<quint16>(bytes.constData() + place);
  };
  std::vector<std::pair<int, int>> images;
  for (qsizetype place = 6; place < 6 + 16 * number(4); place += 16) {
    images.emplace_back(bytes[place], number(place + 6));
  }
  return images;
}

}  // namespace

TEST(Assets, PicturesOfTheRightKindsInEveryProgram) {
  using Images = std::vector<std::pair<int, int>>;
  EXPECT_EQ(ImagesOf(":/assets/quillmere.ico"),
            (Images{{32, 8}, {16, 8}, {48, 32}, {32, 32}, {24, 32}, {16, 32}}));
  EXPECT_EQ(ImagesOf(":/assets/tray.ico"), (Images{{16, 4}}));

  EXPECT_EQ(QImage(":/assets/about.gif").size(), QSize(111, 98));
  EXPECT_EQ(QImage(":/assets/about@2x.gif").size(), QSize(222, 196));
  EXPECT_EQ(QImage(":/assets/tray@2x.ico").size(), QSize(32, 32));
  const QList<QSize> sizes = QIcon(":/assets/quillmere.ico").availableSizes();
  for (const int side : {16, 24, 32, 48}) EXPECT_TRUE(sizes.contains(QSize(side, side))) << side;
  const QImage tray(":/assets/tray.ico");
  EXPECT_EQ(qAlpha(tray.pixel(0, 0)), 0);
  EXPECT_EQ(qAlpha(tray.pixel(6, 9)), 255);
}

TEST(Sound, CommandsAndTheirResults) {
  const QTemporaryDir folder;
  const std::string path = folder.filePath("my \"own\" sound.wav").toStdString();
  QFile(QString::fromStdString(path)).open(QIODevice::WriteOnly);
  const std::string device = '"' + path + '"';
  struct {
    std::string Command;
    bool Done;
  } const steps[] = {
      {"close " + device, false},
      {"play " + device, false},
      {"open " + path, false},
      {"open \"" + path, false},
      {"open \"\"", false},
      {"open", false},
      {"seek " + device, false},
      {"open \"" + folder.path().toStdString() + '"', false},
      {"open \"" + path + ".gone\"", false},
      {"open " + device, true},
      {"open " + device, false},
      {"close " + device, true},
      {"close " + device, false},
  };
  for (const auto& step : steps) {
    EXPECT_EQ(platform::mciSendStringA(step.Command, nullptr, 0, 0) == 0, step.Done)
        << step.Command;
  }
}
