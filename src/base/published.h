#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace plemora {

/// One observer's hold on a Published value: dropping it ends the observation, also from inside
/// the observer itself. It may outlive the Published value. Main thread only.
class Subscription {
 public:
  Subscription() = default;

 private:
  template <typename T>
  friend class Published;
  explicit Subscription(std::shared_ptr<void> hold) : hold_(std::move(hold)) {}

  std::shared_ptr<void> hold_;
};

/// A value that tells its observers of every assignment, after it has been stored. Main thread
/// only. Observers are called in the order of their subscription; one that subscribes during a
/// notification hears the next assignment first.
template <typename T>
class Published {
 public:
  using Observer = std::function<void(const T&)>;

  Published() : value_() {}
  explicit Published(T value) : value_(std::move(value)) {}
  Published(const Published&) = delete;
  Published& operator=(const Published&) = delete;

  const T& get() const { return value_; }

  /// Stores the value and notifies, also when it equals the old one.
  void set(T value) {
    value_ = std::move(value);
    // A snapshot keeps this loop valid while observers come and go. One that was dropped by an
    // earlier observer of this round is expired and is skipped.
    const auto round = observers_;
    std::weak_ptr<int> alive = life_;
    for (const auto& weak : round) {
      if (const auto observer = weak.lock()) {
        (*observer)(value_);
        if (alive.expired()) {
          return;
        }
      }
    }
  }

  /// Changes the value and tells nobody: for what observers learn in another way.
  template <typename Change>
  void changeSilently(Change change) {
    change(value_);
  }

  /// Calls the observer at every later assignment, until the subscription is dropped.
  [[nodiscard]] Subscription subscribe(Observer observer) {
    std::erase_if(observers_, [](const auto& weak) { return weak.expired(); });
    auto hold = std::make_shared<Observer>(std::move(observer));
    observers_.push_back(hold);
    return Subscription(std::move(hold));
  }

  /// As subscribe, but the observer is called with projection(value) and only when that differs
  /// from the one before; the value at the time of subscribing counts as seen.
  template <typename Projection, typename ChangeObserver>
  [[nodiscard]] Subscription subscribeToChanges(Projection projection, ChangeObserver observer) {
    return subscribe([projection, observer, last = projection(value_)](const T& value) mutable {
      auto now = projection(value);
      if (!(now == last)) {
        last = now;
        observer(now);
      }
    });
  }

 private:
  T value_;
  std::vector<std::weak_ptr<Observer>> observers_;
  std::shared_ptr<int> life_ = std::make_shared<int>(0);
};

}  // namespace plemora
