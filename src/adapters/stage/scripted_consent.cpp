#include "adapters/stage/scripted_consent.h"

#include <utility>

namespace plemora {

void ScriptedConsent::decide(bool granted) {
  preflight_ = granted ? 0 : 1;
  for (const auto& reply : std::exchange(replies_, {})) {
    reply(granted);
  }
}

std::optional<int> ScriptedConsent::preflight(const std::string& service) {
  services_.push_back(service);
  return preflight_;
}

bool ScriptedConsent::request(const std::string& service, std::function<void(bool granted)> reply) {
  services_.push_back(service);
  if (!canRequest_) {
    return false;
  }
  replies_.push_back(std::move(reply));
  return true;
}

}  // namespace plemora
