#include "platform/linux/SoundPlayer.h"

#include <chrono>
#include <thread>
#include <utility>

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

const std::thread::id programThread = std::this_thread::get_id();
QtMessageHandler handlerBefore = nullptr;

/// A server that goes away is no news for the terminal. Such messages come from the player's thread
/// and from threads of the toolkit, all others from the program's own.
void KeepQuiet(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (type == QtFatalMsg || std::this_thread::get_id() == programThread) {
    handlerBefore(type, context, message);
  }
}

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

  void CarryOut() {
    for (const auto& [path, wish] : player_.TakeWishes()) {
      const auto loaded = sounds_.find(path);
      if (loaded != sounds_.end()) loaded->second.Sound->stop();
      if (wish == Wish::Play && HasOutput()) Play(path);
    }
  }

 private:
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
  handlerBefore = qInstallMessageHandler(KeepQuiet);
  worker_->moveToThread(thread_);
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
