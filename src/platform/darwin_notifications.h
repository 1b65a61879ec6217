#pragma once

#include <functional>
#include <string>

namespace plemora {

/// Names called out to every process of the machine (the Darwin notification centre on a Mac).
/// post and observe from any thread.
class DarwinNotifications {
 public:
  virtual ~DarwinNotifications() = default;

  virtual void post(const std::string& name) = 0;
  /// The handler is called once for every post, on any thread, for as long as this lives.
  virtual void observe(const std::string& name, std::function<void()> handler) = 0;
};

}  // namespace plemora
