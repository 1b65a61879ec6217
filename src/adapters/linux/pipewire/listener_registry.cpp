#include "adapters/linux/pipewire/listener_registry.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace plemora {

namespace {

struct Listener {
  ObjectChange to;
  std::weak_ptr<AudioListenerBlock> block;
};

}  // namespace

struct ListenerRegistry::State {
  std::mutex mutex;
  std::vector<Listener> listeners;
  std::vector<ObjectChange> pending;
};

ListenerRegistry::ListenerRegistry(MainQueue& mainQueue)
    : mainQueue_(mainQueue), state_(std::make_shared<State>()) {}

void ListenerRegistry::add(AudioObjectID object, const AudioObjectPropertyAddress& address,
                           std::weak_ptr<AudioListenerBlock> block) {
  const std::lock_guard lock(state_->mutex);
  std::erase_if(state_->listeners,
                [](const Listener& listener) { return listener.block.expired(); });
  state_->listeners.push_back({{object, address}, std::move(block)});
}

void ListenerRegistry::remove(AudioObjectID object, const AudioObjectPropertyAddress& address,
                              const std::shared_ptr<AudioListenerBlock>& block) {
  const std::lock_guard lock(state_->mutex);
  const ObjectChange to{object, address};
  std::erase_if(state_->listeners, [&](const Listener& listener) {
    return listener.to == to && listener.block.lock() == block;
  });
}

void ListenerRegistry::post(std::span<const ObjectChange> changes) {
  if (changes.empty()) {
    return;
  }
  const std::lock_guard lock(state_->mutex);
  const bool isUnderWay = !state_->pending.empty();
  for (const ObjectChange& change : changes) {
    if (std::find(state_->pending.begin(), state_->pending.end(), change) ==
        state_->pending.end()) {
      state_->pending.push_back(change);
    }
  }
  if (!isUnderWay) {
    mainQueue_.async([weak = std::weak_ptr(state_)] {
      if (const auto state = weak.lock()) {
        deliver(*state);
      }
    });
  }
}

void ListenerRegistry::deliver(State& state) {
  std::vector<ObjectChange> changes;
  {
    const std::lock_guard lock(state.mutex);
    changes = std::exchange(state.pending, {});
  }
  for (const ObjectChange& change : changes) {
    std::vector<std::weak_ptr<AudioListenerBlock>> blocks;
    {
      const std::lock_guard lock(state.mutex);
      for (const Listener& listener : state.listeners) {
        if (listener.to == change) {
          blocks.push_back(listener.block);
        }
      }
    }
    // A listener may drop others, and itself.
    for (const auto& weak : blocks) {
      if (const auto block = weak.lock()) {
        (*block)({&change.address, 1});
      }
    }
  }
}

}  // namespace plemora
