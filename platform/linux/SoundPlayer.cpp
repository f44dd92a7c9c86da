#include "platform/linux/SoundPlayer.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QAbstractEventDispatcher>
#include <QAudioDevice>
#include <QCoreApplication>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QThread>
#include <QUrl>

#include "platform/linux/SoundServer.h"

using namespace std::chrono_literals;

namespace platform {

namespace {

/// What a loaded sound was made from and for; when it changes, the sound is loaded anew.
struct Origin {
  QDateTime Modified;
  qint64 Size = 0;
  QByteArray Device;
  bool operator==(const Origin&) const = default;
};

struct LoadedSound {
  Origin From;
  std::unique_ptr<QSoundEffect> Sound;
};

}  // namespace

class SoundPlayer::Worker : public QObject {
 public:
  explicit Worker(SoundPlayer& player) : player_(player) {}

  void Begin() {
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &Worker::AwaitLostServer);
  }

  void CarryOut() {
    for (const auto& [path, wish] : player_.TakeWishes()) {
      const auto loaded = sounds_.find(path);
      if (loaded != sounds_.end()) loaded->second.Sound->stop();
      if (wish == Wish::Play && HasOutput()) Play(path);
    }
  }

 private:
  /// When its server goes, the toolkit sets a timer, tries once to reach it again, and is silent
  /// for good when that fails. So the thread, and with it the timer, stands still meanwhile.
  void AwaitLostServer() {
    const QObjectList& timers = QAbstractEventDispatcher::instance()->children();
    if (std::none_of(timers.begin(), timers.end(),
                     [](const QObject* timer) { return timer->inherits("QSingleShotTimer"); })) {
      return;
    }
    while (!SoundServerAnswers(2s)) QThread::sleep(1);
    player_.TakeWishes();  // their moment has passed
  }

  bool HasOutput() {
    if (!reached_ && notBefore_.hasExpired()) {
      reached_ = SoundServerAnswers(2s);
      notBefore_.setRemainingTime(1s);
    }
    return reached_ && !QMediaDevices::defaultAudioOutput().isNull();
  }

  void Play(const std::string& path) {
    const QString name = QFile::decodeName(path.c_str());
    const QFileInfo file(name);
    const Origin now{file.lastModified(), file.size(), QMediaDevices::defaultAudioOutput().id()};
    LoadedSound& loaded = sounds_[path];
    if (!loaded.Sound || loaded.From != now) {
      // The toolkit shares what it has read of a file among its users: the old one must go first.
      loaded.Sound.reset();
      loaded = {now, std::make_unique<QSoundEffect>()};
      loaded.Sound->setSource(QUrl::fromLocalFile(name));
    }
    loaded.Sound->play();
  }

  SoundPlayer& player_;
  std::map<std::string, LoadedSound> sounds_;
  bool reached_ = false;
  QDeadlineTimer notBefore_;
};

SoundPlayer& SoundPlayer::Instance() {
  static auto* player = new SoundPlayer;  // outlives every thread that may still use it
  return *player;
}

SoundPlayer::SoundPlayer() : thread_(new QThread), worker_(new Worker(*this)) {
  worker_->moveToThread(thread_);
  QObject::connect(thread_, &QThread::started, worker_, &Worker::Begin);
  QObject::connect(thread_, &QThread::finished, worker_, &QObject::deleteLater);
  thread_->start(QThread::LowPriority);
  qAddPostRoutine([] { Instance().End(); });
}

void SoundPlayer::End() {
  thread_->quit();
  if (thread_->wait(500)) delete thread_;
}

void SoundPlayer::Play(const std::string& path) { Note(path, Wish::Play); }
void SoundPlayer::Stop(const std::string& path) { Note(path, Wish::Stop); }

void SoundPlayer::Note(const std::string& path, Wish wish) {
  const std::lock_guard lock(mutex_);
  const bool idle = wishes_.empty();
  wishes_[path] = wish;
  if (idle) QMetaObject::invokeMethod(worker_, &Worker::CarryOut, Qt::QueuedConnection);
}

std::map<std::string, SoundPlayer::Wish> SoundPlayer::TakeWishes() {
  const std::lock_guard lock(mutex_);
  return std::exchange(wishes_, {});
}

}  // namespace platform
