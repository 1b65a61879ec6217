#include "support/pipewire/sink_recorder.h"

#include <pipewire/filter.h>
#include <pipewire/pipewire.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <iterator>
#include <map>
#include <stdexcept>

#include "support/pipewire/loop_lock.h"
#include "support/pipewire/private_session.h"
#include "support/wait.h"

namespace plemora::rig {

namespace {

constexpr std::size_t capacity = std::size_t{240} * 48000;  // frames
constexpr double longestTry = 20;                           // seconds

/// Where a channel stands in a stream of several.
std::size_t placeOf(const std::string& channel) {
  static const std::string order[] = {"MONO", "FL", "FR", "FC", "LFE", "RL", "RR"};
  return static_cast<std::size_t>(std::find(std::begin(order), std::end(order), channel) -
                                  std::begin(order));
}

}  // namespace

struct SinkRecorder::Impl {
  Impl(PrivateSession& within, const std::string& recorded) : session(within), sink(recorded) {}

  PrivateSession& session;
  std::string sink;
  std::string name;
  pw_thread_loop* loop = nullptr;
  pw_filter* filter = nullptr;
  std::vector<std::string> channels;  // names, in the order of the recording
  std::vector<void*> ports;

  // Written by the data thread. A frame count is published after its samples.
  std::vector<std::unique_ptr<float[]>> samples;
  std::atomic<std::size_t> count{0};
  std::atomic<int> gaps{0};
  std::atomic<bool> isComplete{false};  // the last cycle brought every channel
  std::atomic<unsigned> rate{48000};
  std::atomic<std::uint64_t> expected{0};
  std::atomic<std::uint64_t> origin{0};  // position of the clock at count 0
  std::size_t start = 0;

  static void onProcess(void* data, spa_io_position* position) {
    auto* self = static_cast<Impl*>(data);
    const auto& clock = position->clock;
    const auto frames = static_cast<std::uint32_t>(clock.duration);
    const std::size_t at = self->count.load(std::memory_order_relaxed);
    if (at + frames > capacity) {
      return;
    }
    const std::uint64_t expected = self->expected.load(std::memory_order_relaxed);
    if (expected != 0 && clock.position != expected) {
      self->gaps.fetch_add(1, std::memory_order_relaxed);
    }
    self->expected.store(clock.position + frames, std::memory_order_relaxed);
    self->origin.store(clock.position - at, std::memory_order_relaxed);
    self->rate.store(clock.rate.denom, std::memory_order_relaxed);
    bool complete = true;
    for (std::size_t channel = 0; channel < self->ports.size(); ++channel) {
      float* to = self->samples[channel].get() + at;
      if (const void* from = pw_filter_get_dsp_buffer(self->ports[channel], frames)) {
        std::memcpy(to, from, frames * sizeof(float));
      } else {
        std::fill_n(to, frames, 0.0f);
        complete = false;
      }
    }
    self->isComplete.store(complete, std::memory_order_relaxed);
    self->count.store(at + frames, std::memory_order_release);
  }
};

SinkRecorder::SinkRecorder(PrivateSession& session, const std::string& sink)
    : impl_(std::make_unique<Impl>(session, sink)) {
  static const pw_filter_events events = {.version = PW_VERSION_FILTER_EVENTS,
                                          .destroy = nullptr,
                                          .state_changed = nullptr,
                                          .io_changed = nullptr,
                                          .param_changed = nullptr,
                                          .add_buffer = nullptr,
                                          .remove_buffer = nullptr,
                                          .process = Impl::onProcess,
                                          .drained = nullptr,
                                          .command = nullptr};
  static std::atomic<int> number{0};
  impl_->name = "recorder-" + std::to_string(++number);
  const auto found = session.graph().node(sink);
  if (!found) {
    throw std::runtime_error("no sink " + sink + " to record");
  }
  for (const auto& port : session.graph().ports(found->id)) {
    if (!port.isInput) {
      impl_->channels.push_back(port.channel);
    }
  }
  const auto& channels = impl_->channels;
  // The numbers of ports tell nothing of their order.
  std::sort(impl_->channels.begin(), impl_->channels.end(),
            [](const auto& a, const auto& b) { return placeOf(a) < placeOf(b); });
  pw_init(nullptr, nullptr);
  for (std::size_t channel = 0; channel < channels.size(); ++channel) {
    // Memory that is not written to costs nothing.
    impl_->samples.push_back(std::make_unique_for_overwrite<float[]>(capacity));
  }
  impl_->loop = pw_thread_loop_new("rig-recorder", nullptr);
  const std::string socket = session.socket();
  impl_->filter = pw_filter_new_simple(
      pw_thread_loop_get_loop(impl_->loop), impl_->name.c_str(),
      pw_properties_new(PW_KEY_CONFIG_NAME, "client-rt.conf", PW_KEY_REMOTE_NAME, socket.c_str(),
                        PW_KEY_NODE_NAME, impl_->name.c_str(), PW_KEY_NODE_AUTOCONNECT, "false",
                        nullptr),
      &events, impl_.get());
  for (const auto& channel : channels) {
    impl_->ports.push_back(pw_filter_add_port(
        impl_->filter, PW_DIRECTION_INPUT, PW_FILTER_PORT_FLAG_MAP_BUFFERS, sizeof(int),
        pw_properties_new(PW_KEY_FORMAT_DSP, "32 bit float mono audio", PW_KEY_PORT_NAME,
                          ("in_" + channel).c_str(), PW_KEY_AUDIO_CHANNEL, channel.c_str(),
                          nullptr),
        nullptr, 0));
  }
  pw_filter_connect(impl_->filter, PW_FILTER_FLAG_RT_PROCESS, nullptr, 0);
  pw_thread_loop_start(impl_->loop);
  attach();
}

SinkRecorder::~SinkRecorder() {
  pw_thread_loop_stop(impl_->loop);
  pw_filter_destroy(impl_->filter);
  pw_thread_loop_destroy(impl_->loop);
}

void SinkRecorder::attach() {
  impl_->isComplete.store(false, std::memory_order_relaxed);
  auto& graph = impl_->session.graph();
  std::map<std::string, std::uint32_t> inputs;
  std::map<std::string, std::uint32_t> outputs;
  const bool ready = eventually(10, [&] {
    graph.sync();
    inputs.clear();
    outputs.clear();
    const auto own = graph.node(impl_->name);
    const auto sink = graph.node(impl_->sink);
    for (const auto& port : own ? graph.ports(own->id) : std::vector<PortView>()) {
      inputs[port.channel] = port.id;
    }
    for (const auto& port : sink ? graph.ports(sink->id) : std::vector<PortView>()) {
      if (!port.isInput) {
        outputs[port.channel] = port.id;
      }
    }
    return outputs.size() == impl_->ports.size() && inputs.size() == outputs.size();
  });
  if (!ready) {
    throw std::runtime_error("cannot link the recorder to " + impl_->sink);
  }
  // Now and then a link is active and yet passes nothing for good (PipeWire 0.3.65, while what it
  // comes from is just starting); a new one does.
  for (int attempt = 0; attempt < 5; ++attempt) {
    std::vector<int> links;
    for (const auto& channel : impl_->channels) {
      links.push_back(graph.link(outputs.at(channel), inputs.at(channel)));
    }
    // Links start one by one: only when all pass samples do the channels belong together.
    if (eventually(1, [this] { return impl_->isComplete.load(std::memory_order_relaxed); })) {
      clear();
      return;
    }
    for (const int link : links) {
      graph.unlink(link);
    }
    graph.sync();
  }
  throw std::runtime_error(impl_->sink + " does not run for its recorder");
}

std::size_t SinkRecorder::frames() const {
  return impl_->count.load(std::memory_order_acquire) - impl_->start;
}

void SinkRecorder::clear() {
  // The data thread owns the count; what moves is where the next recording starts.
  impl_->start = impl_->count.load(std::memory_order_acquire);
  impl_->gaps.store(0, std::memory_order_relaxed);
}

bool SinkRecorder::record(std::size_t more) {
  const std::size_t wanted = frames() + more;
  return eventually(2 + 3 * static_cast<double>(more) / rate(), [&] { return frames() >= wanted; });
}

Recording SinkRecorder::take() {
  Recording result;
  result.frames = frames();
  result.position = impl_->origin.load(std::memory_order_relaxed) + impl_->start;
  result.gaps = impl_->gaps.load(std::memory_order_relaxed);
  for (const auto& channel : impl_->samples) {
    const float* begin = channel.get() + impl_->start;
    result.channels.emplace_back(begin, begin + result.frames);
  }
  return result;
}

Recording SinkRecorder::next(std::size_t frames) {
  clear();
  if (!record(frames)) {
    throw std::runtime_error("the sink " + impl_->sink + " stopped while it was recorded");
  }
  return take();
}

Recording SinkRecorder::nextThat(std::size_t frames,
                                 const std::function<bool(const Recording&)>& isRight) {
  Recording heard;
  eventually(longestTry, [&] {
    heard = next(frames);
    return isRight(heard);
  });
  return heard;
}

unsigned SinkRecorder::rate() const {
  return impl_->rate.load(std::memory_order_relaxed);
}

}  // namespace plemora::rig
