#pragma once

#include <memory>
#include <span>

#include "adapters/linux/pipewire/audio_objects.h"
#include "platform/audio_properties.h"
#include "platform/main_queue.h"

namespace plemora {

/// Who listens to which property, and the way of a change to them: noted on any thread, told on
/// the main thread, once per address however often it changed in between.
class ListenerRegistry {
 public:
  explicit ListenerRegistry(MainQueue& mainQueue);

  void add(AudioObjectID object, const AudioObjectPropertyAddress& address,
           std::weak_ptr<AudioListenerBlock> block);
  /// Main thread.
  void remove(AudioObjectID object, const AudioObjectPropertyAddress& address,
              const std::shared_ptr<AudioListenerBlock>& block);

  /// Any thread but the real-time ones.
  void post(std::span<const ObjectChange> changes);

 private:
  struct State;
  static void deliver(State& state);

  MainQueue& mainQueue_;
  std::shared_ptr<State> state_;  // outlives this object while a delivery is on its way
};

}  // namespace plemora
