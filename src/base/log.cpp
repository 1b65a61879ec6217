#include "base/log.h"

#include <mutex>
#include <utility>

namespace plemora {

namespace {

struct HandlerSlot {
  std::mutex mutex;
  LogHandler handler;
};

// Leaked on purpose: objects destroyed at exit may still log.
HandlerSlot& slot() {
  static auto& instance = *new HandlerSlot;  // NOLINT: lives for the whole process
  return instance;
}

}  // namespace

LogHandler setLogHandler(LogHandler handler) {
  const std::lock_guard lock(slot().mutex);
  return std::exchange(slot().handler, std::move(handler));
}

void Logger::write(LogLevel level, std::string_view message) const {
  const std::lock_guard lock(slot().mutex);
  if (slot().handler) {
    slot().handler(LogRecord{level, category_, message});
  }
}

}  // namespace plemora
