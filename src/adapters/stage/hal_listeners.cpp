#include "adapters/stage/hal_listeners.h"

#include <algorithm>
#include <utility>

namespace plemora {

void HalListeners::add(AudioObjectID object, const AudioObjectPropertyAddress& address,
                       std::weak_ptr<AudioListenerBlock> block) {
  const std::lock_guard lock(mutex_);
  registrations_.emplace(next_++, Registration{object, address, std::move(block)});
}

bool HalListeners::remove(AudioObjectID object, const AudioObjectPropertyAddress& address,
                          const std::shared_ptr<AudioListenerBlock>& block) {
  const std::lock_guard lock(mutex_);
  const auto found = std::ranges::find_if(registrations_, [&](const auto& entry) {
    const Registration& registration = entry.second;
    return registration.object == object && registration.address == address &&
           registration.block.lock() == block;
  });
  if (found == registrations_.end()) {
    return false;
  }
  registrations_.erase(found);
  return true;
}

void HalListeners::notify(AudioObjectID object, const AudioObjectPropertyAddress& address) {
  const std::lock_guard lock(mutex_);
  for (const auto& [id, registration] : registrations_) {
    if (registration.object == object && registration.address == address) {
      main_.async([weak = weak_from_this(), id = id, address] {
        if (const auto self = weak.lock()) {
          self->deliver(id, address);
        }
      });
    }
  }
}

void HalListeners::deliver(std::uint64_t registration, const AudioObjectPropertyAddress& address) {
  std::shared_ptr<AudioListenerBlock> block;
  {
    const std::lock_guard lock(mutex_);
    if (const auto found = registrations_.find(registration); found != registrations_.end()) {
      block = found->second.block.lock();
    }
  }
  if (block) {
    (*block)({&address, 1});
  }
}

int HalListeners::count() const {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(registrations_.size());
}

}  // namespace plemora
