#include "platform/linux/SoundServer.h"

#include <algorithm>
#include <iterator>
#include <pulse/channelmap.h>
#include <pulse/context.h>
#include <pulse/proplist.h>
#include <utility>

using namespace std::chrono_literals;

namespace platform {

void PulseDeleter::operator()(pa_context* context) const {
  pa_context_disconnect(context);
  pa_context_unref(context);
}

void PulseDeleter::operator()(pa_stream* stream) const {
  pa_stream_disconnect(stream);
  pa_stream_unref(stream);
}

SoundServer::SoundServer() : wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (wake_) loop_.reset(pa_mainloop_new());
  if (!loop_) return;
  // The loop's own wake-up is lost on a wait that has not begun.
  pa_mainloop_api* const api = pa_mainloop_get_api(loop_.get());
  api->io_new(
      api, wake_.Number(), PA_IO_EVENT_INPUT,
      [](pa_mainloop_api*, pa_io_event*, int wake, pa_io_event_flags_t, void*) {
        eventfd_t count = 0;
        eventfd_read(wake, &count);
      },
      nullptr);
}

void SoundServer::Play(const std::string& path) {
  Stop(path);
  Connect();
  Playing playing{WaveFile(path), Clock::now() + 2s, nullptr, nullptr};
  if (context_ && playing.File) playing_.emplace(path, std::move(playing));
}

void SoundServer::Stop(const std::string& path) { playing_.erase(path); }

void SoundServer::Connect() {
  if (context_ || Clock::now() < nextTry_) return;
  nextTry_ = Clock::now() + 1s;
  context_.reset(pa_context_new(pa_mainloop_get_api(loop_.get()), "Quillmere"));
  if (context_) pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOFLAGS, nullptr);
}

bool SoundServer::Serve() {
  if (context_ && !PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get()))) {
    playing_.clear();
    context_.reset();
  }
  for (auto each = playing_.begin(); each != playing_.end();) {
    each = GoOn(each->second) ? std::next(each) : playing_.erase(each);
  }
  return loop_ && pa_mainloop_iterate(loop_.get(), 1, nullptr) >= 0;
}

bool SoundServer::GoOn(Playing& playing) {
  if (Clock::now() > playing.BeginsBefore) return false;
  if (!playing.Stream) {
    return pa_context_get_state(context_.get()) != PA_CONTEXT_READY || Begin(playing);
  }
  const pa_stream_state_t state = pa_stream_get_state(playing.Stream.get());
  if (state != PA_STREAM_READY) return state == PA_STREAM_CREATING;
  return playing.End ? pa_operation_get_state(playing.End.get()) == PA_OPERATION_RUNNING
                     : Send(playing);
}

bool SoundServer::Begin(Playing& playing) {
  const pa_sample_spec& form = playing.File.Form();
  pa_channel_map channels;
  pa_channel_map_init_extend(&channels, form.channels, PA_CHANNEL_MAP_WAVEEX);
  const std::unique_ptr<pa_proplist, void (*)(pa_proplist*)> kind(pa_proplist_new(),
                                                                  pa_proplist_free);
  pa_proplist_sets(kind.get(), PA_PROP_MEDIA_ROLE, "event");
  playing.Stream.reset(
      pa_stream_new_with_proplist(context_.get(), "Quillmere", &form, &channels, kind.get()));
  return playing.Stream && pa_stream_connect_playback(playing.Stream.get(), nullptr, nullptr,
                                                      PA_STREAM_NOFLAGS, nullptr, nullptr) == 0;
}

bool SoundServer::Send(Playing& playing) {
  pa_stream* const stream = playing.Stream.get();
  playing.BeginsBefore = Clock::time_point::max();
  for (;;) {
    const std::size_t room = pa_stream_writable_size(stream);
    if (room == static_cast<std::size_t>(-1)) return false;
    if (room < pa_frame_size(&playing.File.Form())) return true;
    const std::size_t size =
        playing.File.Read(std::span(samples_).first(std::min(room, samples_.size())));
    if (size == 0) {
      playing.End.reset(pa_stream_drain(stream, nullptr, nullptr));
      return static_cast<bool>(playing.End);
    }
    if (pa_stream_write(stream, samples_.data(), size, nullptr, 0, PA_SEEK_RELATIVE) != 0) {
      return false;
    }
  }
}

}  // namespace platform
