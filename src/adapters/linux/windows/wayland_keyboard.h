#pragma once

#include <QString>
#include <QTimer>
#include <Qt>
#include <cstdint>
#include <functional>
#include <memory>

struct xkb_context;
struct xkb_keymap;
struct xkb_state;

namespace plemora {

/// A key as the toolkit's events describe it.
struct WaylandKey {
  bool isPress = true;
  bool isRepeat = false;
  int key = 0;  ///< Qt::Key
  QString text;
  Qt::KeyboardModifiers modifiers;
  std::uint32_t time = 0;  ///< milliseconds
};

/// Turns a seat's key codes into keys, by the layout that the compositor hands over, and repeats a
/// key that is held. Main thread; wakes up only while a key that repeats is held.
class WaylandKeyboard {
 public:
  explicit WaylandKeyboard(std::function<void(const WaylandKey&)> handler);
  ~WaylandKeyboard();

  /// Takes the descriptor over.
  void setKeymap(int file, std::uint32_t size);
  void setModifiers(std::uint32_t depressed, std::uint32_t latched, std::uint32_t locked,
                    std::uint32_t group);
  /// Keys a second (0: none repeats), milliseconds.
  void setRepeat(int rate, int delay);
  void key(std::uint32_t time, std::uint32_t code, bool isPress);
  /// The keys have gone elsewhere.
  void stopRepeating() { repeat_.stop(); }

  Qt::KeyboardModifiers modifiers() const;

 private:
  struct Deleter {
    void operator()(xkb_context* object) const;
    void operator()(xkb_keymap* object) const;
    void operator()(xkb_state* object) const;
  };

  std::function<void(const WaylandKey&)> handler_;
  std::unique_ptr<xkb_context, Deleter> context_;
  std::unique_ptr<xkb_keymap, Deleter> keymap_;
  std::unique_ptr<xkb_state, Deleter> state_;
  QTimer repeat_;
  WaylandKey held_;
  std::uint32_t heldCode_ = 0;
  int repeatRate_ = 25;
  int repeatDelay_ = 600;
};

}  // namespace plemora
