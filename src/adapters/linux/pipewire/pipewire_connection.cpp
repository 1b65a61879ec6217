#include "adapters/linux/pipewire/pipewire_connection.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("pipewire");

// A server that restarts is there again within moments, or starts when its socket is asked. After
// these attempts only a new socket file brings us back: no wake-ups while there is no server.
constexpr int maxAttempts = 12;
constexpr double firstRetrySeconds = 0.05;
constexpr double longestRetrySeconds = 2.0;

std::string runtimeDirectory() {
  for (const char* name : {"PIPEWIRE_RUNTIME_DIR", "XDG_RUNTIME_DIR"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') {
      return value;
    }
  }
  return "";
}

}  // namespace

PipeWireConnection::PipeWireConnection(PipeWireLoop& loop, ClientDirectory& directory,
                                       Observer observer)
    : loop_(loop), observer_(std::move(observer)), objects_(directory) {
  changed_ = LoopSource::event(loop_, [this] { follow(); });
  grace_ = LoopSource::timer(loop_, [this] { follow(); });
  retry_ = LoopSource::timer(loop_, [this] { tryConnect(); });
}

PipeWireConnection::~PipeWireConnection() {
  close();
}

double PipeWireConnection::now() {
  return mediaTime();
}

void PipeWireConnection::open() {
  {
    const PipeWireLoop::Lock lock(loop_);
    tryConnect();
  }
  loop_.start();
  const PipeWireLoop::Lock lock(loop_);
  const double deadline = now() + 1.0;
  while (core_ && !isReady_ && now() < deadline) {
    loop_.wait(0.1);
  }
}

void PipeWireConnection::close() {
  loop_.stop();
  engine_.reset();
  mirror_.reset();
  coreHook_.remove();
  core_.reset();
  socket_ = {};
  if (inotify_ >= 0) {
    ::close(std::exchange(inotify_, -1));
  }
}

void PipeWireConnection::tryConnect() {
  if (core_) {
    return;
  }
  core_.reset(pw_context_connect(loop_.context(), nullptr, 0));
  if (!core_) {
    retryLater();
    return;
  }
  static const pw_core_events events = [] {
    pw_core_events made{};
    made.version = PW_VERSION_CORE_EVENTS;
    made.done = [](void* data, std::uint32_t id, int sequence) {
      if (id == PW_ID_CORE) {
        static_cast<PipeWireConnection*>(data)->answered(sequence);
      }
    };
    made.error = [](void* data, std::uint32_t id, int, int result, const char* message) {
      auto& self = *static_cast<PipeWireConnection*>(data);
      if (id == PW_ID_CORE && result == -EPIPE) {
        // Not from inside the library's own callback.
        self.isLost_ = true;
        self.changed_.signal();
      } else if (result != -ENOENT) {
        // An object that vanished while we asked for it is no news.
        logger.debug(std::string("server: ") + (message != nullptr ? message : "error"));
      }
    };
    return made;
  }();
  pw_core_add_listener(core_.get(), coreHook_.get(), &events, this);
  mirror_ = std::make_unique<GraphMirror>(core_.get(), [this] { changed_.signal(); });
  engine_ = std::make_unique<CorrectionEngine>(loop_, [this] { changed_.signal(); });
  ++number_;
  isReady_ = false;
  // The first answer ends the list of objects, the second what we asked about each of them.
  syncsLeft_ = 2;
  pw_core_sync(core_.get(), PW_ID_CORE, 0);
}

void PipeWireConnection::answered(int) {
  if (syncsLeft_ == 0 || --syncsLeft_ > 0) {
    if (syncsLeft_ > 0) {
      pw_core_sync(core_.get(), PW_ID_CORE, 0);
    }
    return;
  }
  isReady_ = true;
  attempts_ = 0;
  socket_ = {};
  if (inotify_ >= 0) {
    ::close(std::exchange(inotify_, -1));
  }
  connected_ = true;
  follow();
  observer_.connectionChanged(true);
  loop_.wakeWaiters();
}

void PipeWireConnection::disconnect() {
  isLost_ = false;
  const bool wasReady = std::exchange(isReady_, false);
  engine_.reset();
  mirror_.reset();
  coreHook_.remove();
  core_.reset();
  connected_ = false;
  observer_.objectsChanged(objects_.update(nullptr, now()));
  if (wasReady) {
    observer_.connectionChanged(false);
  }
  loop_.wakeWaiters();
  retryLater();
}

void PipeWireConnection::retryLater() {
  watchSocket();
  if (attempts_ < maxAttempts) {
    retry_.arm(std::min(firstRetrySeconds * (1 << attempts_), longestRetrySeconds));
    ++attempts_;
  }
}

void PipeWireConnection::watchSocket() {
  const std::string directory = runtimeDirectory();
  if (inotify_ >= 0 || directory.empty()) {
    return;
  }
  inotify_ = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
  if (inotify_ < 0 ||
      inotify_add_watch(inotify_, directory.c_str(), IN_CREATE | IN_MOVED_TO | IN_ATTRIB) < 0) {
    return;
  }
  socket_ = LoopSource::readable(loop_, inotify_, [this] {
    char buffer[4096];
    while (::read(inotify_, buffer, sizeof(buffer)) > 0) {
    }
    // The file is there a moment before the server listens on it.
    attempts_ = 0;
    retry_.arm(firstRetrySeconds);
  });
}

void PipeWireConnection::follow() {
  if (isLost_) {
    disconnect();
    return;
  }
  if (!isReady_) {
    return;
  }
  const double time = now();
  const auto changes = objects_.update(mirror_.get(), time);
  if (objects_.defaultSink() != lastDefault_) {
    lastDefault_ = objects_.defaultSink();
    defaultChangedAt_ = time;
  }
  if (objects_.hasWaiting()) {
    grace_.arm(AudioObjects::gracePeriod);
  }
  engine_->reconcile(*mirror_, objects_, time);
  if (!changes.empty()) {
    observer_.objectsChanged(changes);
  }
}

}  // namespace plemora
