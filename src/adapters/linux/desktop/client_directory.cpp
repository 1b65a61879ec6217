#include "adapters/linux/desktop/client_directory.h"

#include <utility>

namespace plemora {

void ClientDirectory::set(std::int32_t pid, ClientHints hints) {
  const std::lock_guard lock(mutex_);
  hints_.insert_or_assign(pid, std::move(hints));
}

void ClientDirectory::erase(std::int32_t pid) {
  const std::lock_guard lock(mutex_);
  hints_.erase(pid);
}

std::optional<ClientHints> ClientDirectory::find(std::int32_t pid) const {
  const std::lock_guard lock(mutex_);
  const auto found = hints_.find(pid);
  return found == hints_.end() ? std::nullopt : std::optional(found->second);
}

std::int32_t ClientDirectory::syntheticPid(const std::string& key) {
  const std::lock_guard lock(mutex_);
  const auto next = firstSyntheticPid + static_cast<std::int32_t>(synthetic_.size());
  return synthetic_.try_emplace(key, next).first->second;
}

}  // namespace plemora
