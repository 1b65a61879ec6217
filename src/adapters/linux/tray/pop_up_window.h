#pragma once

#include <QRasterWindow>
#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

#include "adapters/linux/tray/pop_up_menu.h"

namespace plemora {

/// The window of a PopUpMenu: lays the items out, draws them, and follows pointer and keys.
class PopUpWindow : public QRasterWindow {
 public:
  /// done is called once, with the action of the choice or an empty one; never from inside an
  /// operation of the window.
  PopUpWindow(std::vector<PopUpMenuItem> items, std::function<void(std::function<void()>)> done);

  void setItems(std::vector<PopUpMenuItem> items);
  const std::vector<PopUpMenuItem>& items() const { return items_; }
  /// Hides it; done is not called any more.
  void abandon();
  /// anchor: in the toolkit's coordinates.
  void showAt(const QRect& anchor);
  QSize contentSize() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  bool event(QEvent* event) override;

 private:
  int rowHeight(const PopUpMenuItem& item) const;
  QRect rowRect(int index) const;
  std::optional<int> rowAt(const QPoint& point) const;
  bool canChoose(int index) const;
  void select(std::optional<int> index);
  void step(int direction);
  void choose(std::optional<int> index);
  void place();
  void grab();
  void close();
  QFont menuFont() const;

  std::vector<PopUpMenuItem> items_;
  std::function<void(std::function<void()>)> done_;
  std::optional<int> selected_;
  QRect anchor_;
  QTimer retry_;
  int attempts_ = 0;
  bool isPressed_ = false;  // inside the menu, since it was shown
  bool isDone_ = false;
  bool isAbandoned_ = false;
};

}  // namespace plemora
