#include "adapters/linux/pipewire/pipewire_loop.h"

#include <cmath>
#include <ctime>
#include <stdexcept>
#include <utility>

namespace plemora {

PipeWireLoop::PipeWireLoop() {
  pw_init(nullptr, nullptr);
  thread_.reset(pw_thread_loop_new("plemora-pw", nullptr));
  if (!thread_) {
    throw std::runtime_error("PipeWire: the event thread could not be set up");
  }
  // The default client configuration would leave the data thread without real-time priority.
  pw_properties* properties =
      pw_properties_new(PW_KEY_CONFIG_NAME, "client-rt.conf", PW_KEY_APP_NAME, "Plemora",
                        PW_KEY_APP_ID, "com.quorvane.mixer", nullptr);
  context_.reset(pw_context_new(pw_thread_loop_get_loop(thread_.get()), properties, 0));
  if (!context_) {
    throw std::runtime_error(
        "PipeWire: the client configuration \"client-rt.conf\" could not be loaded; "
        "check that the package that holds PipeWire's client files is installed");
  }
}

PipeWireLoop::~PipeWireLoop() {
  stop();
}

void PipeWireLoop::start() {
  pw_thread_loop_start(thread_.get());
}

void PipeWireLoop::stop() {
  pw_thread_loop_stop(thread_.get());
}

pw_loop* PipeWireLoop::loop() const {
  return pw_thread_loop_get_loop(thread_.get());
}

bool PipeWireLoop::wait(double seconds) const {
  timespec deadline{};
  pw_thread_loop_get_time(thread_.get(), &deadline, static_cast<std::int64_t>(seconds * 1e9));
  return pw_thread_loop_timed_wait_full(thread_.get(), &deadline) == 0;
}

void PipeWireLoop::wakeWaiters() const {
  pw_thread_loop_signal(thread_.get(), false);
}

bool PipeWireLoop::isLoopThread() const {
  return pw_thread_loop_in_thread(thread_.get());
}

void PipeWireLoop::runOnDataThread(void (*call)(void*), void* data) const {
  struct Call {
    void (*call)(void*);
    void* data;
  } request{call, data};
  pw_data_loop_invoke(
      pw_context_get_data_loop(context_.get()),
      [](spa_loop*, bool, std::uint32_t, const void*, std::size_t, void* user) {
        const auto* made = static_cast<Call*>(user);
        made->call(made->data);
        return 0;
      },
      0, nullptr, 0, true, &request);
}

PipeWireLoop::Lock::Lock(const PipeWireLoop& loop) : loop_(loop.thread_.get()) {
  pw_thread_loop_lock(loop_);
}

PipeWireLoop::Lock::~Lock() {
  pw_thread_loop_unlock(loop_);
}

LoopSource::LoopSource(const PipeWireLoop& loop, Handler handler)
    : loop_(loop.loop()), handler_(std::make_unique<Handler>(std::move(handler))) {}

LoopSource& LoopSource::operator=(LoopSource&& other) noexcept {
  std::swap(loop_, other.loop_);
  std::swap(source_, other.source_);
  std::swap(handler_, other.handler_);
  return *this;
}

LoopSource::~LoopSource() {
  if (handler_ && source_ != nullptr) {
    pw_loop_destroy_source(loop_, source_);
  }
}

LoopSource LoopSource::event(const PipeWireLoop& loop, Handler handler) {
  LoopSource made(loop, std::move(handler));
  made.source_ = pw_loop_add_event(
      made.loop_, [](void* data, std::uint64_t) { (*static_cast<Handler*>(data))(); },
      made.handler_.get());
  return made;
}

LoopSource LoopSource::timer(const PipeWireLoop& loop, Handler handler) {
  LoopSource made(loop, std::move(handler));
  made.source_ = pw_loop_add_timer(
      made.loop_, [](void* data, std::uint64_t) { (*static_cast<Handler*>(data))(); },
      made.handler_.get());
  return made;
}

LoopSource LoopSource::readable(const PipeWireLoop& loop, int fd, Handler handler) {
  LoopSource made(loop, std::move(handler));
  made.source_ = pw_loop_add_io(
      made.loop_, fd, SPA_IO_IN, false,
      [](void* data, int, std::uint32_t) { (*static_cast<Handler*>(data))(); },
      made.handler_.get());
  return made;
}

void LoopSource::signal() const {
  pw_loop_signal_event(loop_, source_);
}

void LoopSource::arm(double seconds) const {
  double whole = 0;
  const double fraction = std::modf(seconds, &whole);
  // A timer of zero would be a disarmed one.
  timespec value{static_cast<std::time_t>(whole), static_cast<long>(fraction * 1e9) + 1};
  timespec interval{0, 0};
  pw_loop_update_timer(loop_, source_, &value, &interval, false);
}

void LoopSource::disarm() const {
  timespec zero{0, 0};
  pw_loop_update_timer(loop_, source_, &zero, &zero, false);
}

}  // namespace plemora
