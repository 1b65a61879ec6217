#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

#include "platform/input_events.h"

namespace plemora {

/// Handlers of one kind of event. They may drop themselves and each other while they are called.
template <typename Handler>
class MonitorList {
 public:
  struct Entry {
    unsigned mask;
    Handler handler;
  };

  [[nodiscard]] std::unique_ptr<EventMonitor> add(unsigned mask, Handler handler) {
    auto entry = std::make_shared<Entry>(Entry{mask, std::move(handler)});
    entries_.push_back(entry);
    return std::make_unique<Hold>(std::move(entry));
  }

  /// Those that are held and want the event.
  std::vector<std::shared_ptr<Entry>> wanting(InputEventType type) {
    std::vector<std::shared_ptr<Entry>> result;
    for (const auto& weak : entries_) {
      const auto entry = weak.lock();
      if (entry && (entry->mask >> static_cast<int>(type) & 1U) != 0) {
        result.push_back(entry);
      }
    }
    return result;
  }

  bool isEmpty() {
    std::erase_if(entries_, [](const auto& weak) { return weak.expired(); });
    return entries_.empty();
  }

 private:
  struct Hold : EventMonitor {
    explicit Hold(std::shared_ptr<Entry> held) : entry(std::move(held)) {}
    std::shared_ptr<Entry> entry;
  };

  std::vector<std::weak_ptr<Entry>> entries_;
};

/// What every display shows a program: the events of its own windows. Presses elsewhere are not
/// shown, but where a press in another window takes the keys away, their loss tells of it: global
/// monitors hear a left press then. The application's events are looked at only while a local
/// monitor is installed.
class QtInputEvents : public QObject, public InputEvents {
 public:
  explicit QtInputEvents(bool isFocusLossPress = true);
  ~QtInputEvents() override;

  [[nodiscard]] std::unique_ptr<EventMonitor> monitorGlobal(
      unsigned mask, std::function<void(const InputEvent&)> handler) override;
  [[nodiscard]] std::unique_ptr<EventMonitor> monitorLocal(
      unsigned mask, std::function<bool(const InputEvent&)> handler) override;
  Point pointerLocation() override;
  unsigned pressedMouseButtons() override;
  /// No display lets a program press keys of others.
  void postKey(int keyCode) override;

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  MonitorList<std::function<void(const InputEvent&)>> global_;

 private:
  MonitorList<std::function<bool(const InputEvent&)>> local_;
};

}  // namespace plemora
