// Plays generated samples as any app would, told by its stdin what to do:
//   tone_player NAME SIGNAL CHANNELS RATE [TARGET]
// Commands: open [NODE], close N, pause N, resume N. The node is called NAME unless told. Writes "N
// STATE" whenever a stream's state changes. Ends when its stdin does.

#include <pipewire/pipewire.h>
#include <spa/param/audio/format-utils.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/pipewire/loop_lock.h"
#include "support/samples.h"

namespace {

using plemora::rig::LoopLock;
using plemora::rig::Signal;

struct Format {
  std::string name;
  Signal signal;
  unsigned channels;
  unsigned rate;
  std::string target;
};

class ToneStream {
 public:
  ToneStream(pw_core* core, const Format& format, const std::string& node, std::size_t number)
      : format_(format), number_(number) {
    auto* properties = pw_properties_new(
        PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Playback", PW_KEY_MEDIA_ROLE, "Music",
        PW_KEY_NODE_NAME, node.c_str(), PW_KEY_APP_NAME, format.name.c_str(), nullptr);
    if (!format.target.empty()) {
      pw_properties_set(properties, "target.object", format.target.c_str());
    }
    stream_ = pw_stream_new(core, format.name.c_str(), properties);
    pw_stream_add_listener(stream_, &listener_, &events, this);
    std::uint8_t bytes[1024];
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(bytes, sizeof bytes);
    spa_audio_info_raw info{};
    info.format = SPA_AUDIO_FORMAT_F32;
    info.rate = format.rate;
    info.channels = format.channels;
    static constexpr std::uint32_t mono[] = {SPA_AUDIO_CHANNEL_MONO};
    static constexpr std::uint32_t wide[] = {SPA_AUDIO_CHANNEL_FL, SPA_AUDIO_CHANNEL_FR,
                                             SPA_AUDIO_CHANNEL_FC, SPA_AUDIO_CHANNEL_LFE,
                                             SPA_AUDIO_CHANNEL_RL, SPA_AUDIO_CHANNEL_RR};
    const std::uint32_t* positions = format.channels == 1 ? mono : wide;
    std::copy_n(positions, format.channels, info.position);
    const spa_pod* parameters[] = {
        spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info)};
    pw_stream_connect(
        stream_, PW_DIRECTION_OUTPUT, PW_ID_ANY,
        static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS |
                                     PW_STREAM_FLAG_RT_PROCESS),
        parameters, 1);
  }
  ~ToneStream() { pw_stream_destroy(stream_); }
  ToneStream(const ToneStream&) = delete;
  ToneStream& operator=(const ToneStream&) = delete;

  void setActive(bool active) { pw_stream_set_active(stream_, active); }

 private:
  static void onState(void* data, pw_stream_state, pw_stream_state state, const char*) {
    // One write call: the lines of several streams must not mix.
    const std::string line = std::to_string(static_cast<ToneStream*>(data)->number_) + " " +
                             pw_stream_state_as_string(state) + "\n";
    std::fputs(line.c_str(), stdout);
    std::fflush(stdout);
  }

  static void onProcess(void* data) {
    auto* self = static_cast<ToneStream*>(data);
    pw_buffer* buffer = pw_stream_dequeue_buffer(self->stream_);
    if (buffer == nullptr) {
      return;
    }
    spa_data& block = buffer->buffer->datas[0];
    const auto& format = self->format_;
    const auto stride = static_cast<std::uint32_t>(sizeof(float) * format.channels);
    std::uint64_t frames = block.maxsize / stride;
    if (buffer->requested != 0) {
      frames = std::min<std::uint64_t>(frames, buffer->requested);
    }
    auto* to = static_cast<float*>(block.data);
    for (std::uint64_t i = 0; i < frames; ++i, ++self->frame_) {
      for (unsigned channel = 0; channel < format.channels; ++channel) {
        *to++ = format.signal.at(self->frame_, channel, format.rate);
      }
    }
    block.chunk->offset = 0;
    block.chunk->stride = static_cast<std::int32_t>(stride);
    block.chunk->size = static_cast<std::uint32_t>(frames) * stride;
    pw_stream_queue_buffer(self->stream_, buffer);
  }

  static const pw_stream_events events;

  const Format& format_;
  std::size_t number_;
  pw_stream* stream_ = nullptr;
  spa_hook listener_{};
  std::uint64_t frame_ = 0;
};

const pw_stream_events ToneStream::events = {.version = PW_VERSION_STREAM_EVENTS,
                                             .destroy = nullptr,
                                             .state_changed = ToneStream::onState,
                                             .control_info = nullptr,
                                             .io_changed = nullptr,
                                             .param_changed = nullptr,
                                             .add_buffer = nullptr,
                                             .remove_buffer = nullptr,
                                             .process = ToneStream::onProcess,
                                             .drained = nullptr,
                                             .command = nullptr,
                                             .trigger_done = nullptr};

int play(const Format& format) {
  pw_init(nullptr, nullptr);
  pw_thread_loop* loop = pw_thread_loop_new("tone", nullptr);
  pw_context* context =
      pw_context_new(pw_thread_loop_get_loop(loop),
                     pw_properties_new(PW_KEY_CONFIG_NAME, "client-rt.conf", nullptr), 0);
  pw_thread_loop_start(loop);
  std::vector<std::unique_ptr<ToneStream>> streams;
  {
    const LoopLock lock(loop);
    pw_core* core = pw_context_connect(context, nullptr, 0);
    if (core == nullptr) {
      std::cerr << "no sound server\n";
      return 1;
    }
    pw_thread_loop_unlock(loop);
    for (std::string line; std::getline(std::cin, line);) {
      const LoopLock command(loop);
      std::istringstream words(line);
      std::string verb;
      std::size_t number = 0;
      words >> verb;
      if (verb == "open") {
        std::string node;
        const bool isNamed = !(words >> node).fail();
        streams.push_back(std::make_unique<ToneStream>(core, format, isNamed ? node : format.name,
                                                       streams.size()));
      } else if (words >> number; number < streams.size() && streams[number]) {
        if (verb == "close") {
          streams[number].reset();
        } else {
          streams[number]->setActive(verb == "resume");
        }
      }
    }
    pw_thread_loop_lock(loop);
    streams.clear();
    pw_core_disconnect(core);
  }
  pw_thread_loop_stop(loop);
  pw_context_destroy(context);
  pw_thread_loop_destroy(loop);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    std::cerr << "usage: tone_player NAME SIGNAL CHANNELS RATE [TARGET]\n";
    return 2;
  }
  try {
    return play({argv[1], Signal::parse(argv[2]), static_cast<unsigned>(std::stoul(argv[3])),
                 static_cast<unsigned>(std::stoul(argv[4])), argc > 5 ? argv[5] : ""});
  } catch (const std::exception& error) {
    std::cerr << "tone_player: " << error.what() << "\n";
    return 2;
  }
}
