#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

#include "platform/audio_properties.h"
#include "platform/main_queue.h"

namespace plemora {

/// The listeners registered with a simulated HAL. Those of an object that vanishes stay until they
/// are removed, as with the real one. Any thread.
class HalListeners : public std::enable_shared_from_this<HalListeners> {
 public:
  explicit HalListeners(MainQueue& main) : main_(main) {}

  void add(AudioObjectID object, const AudioObjectPropertyAddress& address,
           std::weak_ptr<AudioListenerBlock> block);
  /// False when there is no such registration.
  bool remove(AudioObjectID object, const AudioObjectPropertyAddress& address,
              const std::shared_ptr<AudioListenerBlock>& block);

  /// Lets the main queue call every block now registered for the address, unless it is removed
  /// or gone by then.
  void notify(AudioObjectID object, const AudioObjectPropertyAddress& address);

  /// Registrations not yet removed.
  int count() const;

 private:
  struct Registration {
    AudioObjectID object = 0;
    AudioObjectPropertyAddress address;
    std::weak_ptr<AudioListenerBlock> block;
  };
  void deliver(std::uint64_t registration, const AudioObjectPropertyAddress& address);

  MainQueue& main_;
  mutable std::mutex mutex_;
  std::map<std::uint64_t, Registration> registrations_;
  std::uint64_t next_ = 1;
};

}  // namespace plemora
