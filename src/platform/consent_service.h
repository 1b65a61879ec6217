#pragma once

#include <functional>
#include <optional>
#include <string>

namespace plemora {

/// The system's privacy-consent service. Main thread.
class ConsentService {
 public:
  virtual ~ConsentService() = default;

  /// The service's answer without asking the user: 0 allowed, 1 refused, anything else undecided.
  /// None when the service, or its function, is missing.
  virtual std::optional<int> preflight(const std::string& service) = 0;

  /// Asks the user if nothing is decided yet. The reply comes on a thread of the service's
  /// choosing. False, and no reply, when the service or its function is missing.
  virtual bool request(const std::string& service, std::function<void(bool granted)> reply) = 0;
};

}  // namespace plemora
