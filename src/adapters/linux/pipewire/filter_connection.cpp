#include "adapters/linux/pipewire/filter_connection.h"

#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("pipewire");

// What the server answers to the request for a link, its formats and buffers, is up to 1.5 KiB.
constexpr int linksPerTurn = 16;
constexpr double turnSeconds = 0.01;

}  // namespace

FilterConnection::FilterConnection(const PipeWireLoop& loop, std::function<void()> onSpoilt)
    : onSpoilt_(std::move(onSpoilt)), core_(pw_context_connect(loop.context(), nullptr, 0)) {
  if (!core_) {
    return;
  }
  static const pw_core_events events = [] {
    pw_core_events made{};
    made.version = PW_VERSION_CORE_EVENTS;
    made.add_mem = [](void* data, std::uint32_t id, std::uint32_t, int descriptor, std::uint32_t) {
      static_cast<FilterConnection*>(data)->checkMemory(id, descriptor);
    };
    made.error = [](void* data, std::uint32_t id, int, int result, const char*) {
      if (id == PW_ID_CORE && result == -EPIPE) {
        static_cast<FilterConnection*>(data)->spoil();
      }
    };
    return made;
  }();
  pw_core_add_listener(core_.get(), hook_.get(), &events, this);
}

bool FilterConnection::mayLink(double now) {
  if (now - turnStart_ >= turnSeconds) {
    turnStart_ = now;
    linksInTurn_ = 0;
  }
  return linksInTurn_++ < linksPerTurn;
}

// The library has been told before us. Where it has put the memory elsewhere, or what came is no
// memory at all, the descriptors are no longer those of their messages.
void FilterConnection::checkMemory(std::uint32_t id, int descriptor) {
  if (isSpoilt_) {
    return;
  }
  const pw_memblock* block = pw_mempool_find_id(pw_core_get_mempool(core_.get()), id);
  struct stat status {};
  if (block == nullptr || block->fd != descriptor || fstat(descriptor, &status) != 0 ||
      !S_ISREG(status.st_mode)) {
    logger.notice("a connection has mixed up its memory; its streams move to another");
    spoil();
  }
}

void FilterConnection::spoil() {
  isSpoilt_ = true;
  onSpoilt_();
}

}  // namespace plemora
