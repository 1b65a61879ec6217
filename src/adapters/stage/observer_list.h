#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/accessibility.h"

namespace plemora {

/// Who observes which application. Observers may outlive it, and may drop themselves and each other
/// while they are called. Main thread.
class ObserverList {
 public:
  [[nodiscard]] std::unique_ptr<AccessibilityObserver> add(std::int32_t pid,
                                                           std::vector<std::string> notifications,
                                                           std::function<void()> handler);
  /// Calls those who asked for that notification.
  void notify(std::int32_t pid, const std::string& notification);
  int count() const;

 private:
  struct Entry {
    std::int32_t pid;
    std::vector<std::string> notifications;
    std::function<void()> handler;
  };
  struct Hold;

  std::vector<std::weak_ptr<Entry>> entries_;
};

}  // namespace plemora
