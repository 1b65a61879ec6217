#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/darwin_notifications.h"

namespace plemora {

/// Notifications that reach everybody who shares this object, on the thread that posts them.
/// Thread-safe.
class ScriptedNotifications : public DarwinNotifications {
 public:
  void post(const std::string& name) override {
    std::vector<std::function<void()>> handlers;
    {
      const std::lock_guard lock(mutex_);
      posted_.push_back(name);
      for (const auto& [observed, handler] : observers_) {
        if (observed == name) {
          handlers.push_back(handler);
        }
      }
    }
    for (const auto& handler : handlers) {
      handler();
    }
  }

  void observe(const std::string& name, std::function<void()> handler) override {
    const std::lock_guard lock(mutex_);
    observers_.emplace_back(name, std::move(handler));
  }

  /// Every name that was posted, in order.
  std::vector<std::string> posted() {
    const std::lock_guard lock(mutex_);
    return posted_;
  }

 private:
  std::mutex mutex_;  // guards the rest
  std::vector<std::pair<std::string, std::function<void()>>> observers_;
  std::vector<std::string> posted_;
};

}  // namespace plemora
