#pragma once

#include <QObject>
#include <QRect>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "platform/screens.h"

class QScreen;

namespace plemora {

/// The toolkit's screens. An id belongs to one screen as long as that is there, and to no other
/// afterwards. Made after the QGuiApplication.
class LinuxScreens : public Screens {
 public:
  /// What panels and docks leave of a screen; both rectangles in the toolkit's coordinates.
  using UsableArea = std::function<QRect(const QScreen& screen)>;

  LinuxScreens();
  ~LinuxScreens() override;

  const Published<std::vector<Screen>>& screens() override { return screens_; }
  [[nodiscard]] Subscription observe(
      std::function<void(const std::vector<Screen>&)> observer) override {
    return screens_.subscribe(std::move(observer));
  }

  /// Replaces QScreen::availableGeometry, which knows of docks on single-screen desktops only.
  void setUsableArea(UsableArea usable);
  /// Reads everything again, and publishes it if it differs.
  void refresh();

  /// The screen with that id, else the first one; null while there is none.
  QScreen* screen(int id) const;
  /// The id of the screen that shows most of a rectangle (global).
  std::optional<int> screenShowing(const Rect& rect) const;

 private:
  void watch(QScreen* screen);

  Published<std::vector<Screen>> screens_;
  UsableArea usable_;
  std::map<const QScreen*, int> ids_;
  int nextID_ = 1;
  QObject context_;  // ends the connections to the screens
};

}  // namespace plemora
