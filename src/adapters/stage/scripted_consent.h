#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/consent_service.h"

namespace plemora {

/// A consent service that answers what it is told. One thread.
class ScriptedConsent : public ConsentService {
 public:
  /// What preflight says from now on: 0 allowed, 1 refused, else undecided. None: the service, or
  /// its function, is missing.
  void setPreflight(std::optional<int> answer) { preflight_ = answer; }
  /// Whether requests are taken.
  void setCanRequest(bool canRequest) { canRequest_ = canRequest; }

  /// The user decides: preflight follows, and every open request is replied to, on this thread.
  void decide(bool granted);

  /// What preflight says now; asking for it here is no call.
  std::optional<int> answer() const { return preflight_; }
  int openRequests() const { return static_cast<int>(replies_.size()); }
  /// The service named by each call, in order.
  const std::vector<std::string>& services() const { return services_; }

  std::optional<int> preflight(const std::string& service) override;
  bool request(const std::string& service, std::function<void(bool granted)> reply) override;

 private:
  std::optional<int> preflight_ = 0;
  bool canRequest_ = true;
  std::vector<std::function<void(bool)>> replies_;
  std::vector<std::string> services_;
};

}  // namespace plemora
