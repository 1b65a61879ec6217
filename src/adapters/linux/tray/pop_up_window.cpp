#include "adapters/linux/tray/pop_up_window.h"

#include <QExposeEvent>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRegion>
#include <QScreen>
#include <algorithm>
#include <utility>

namespace plemora {

namespace {

constexpr int itemHeight = 24;
constexpr int separatorHeight = 11;
constexpr int padding = 5;     // around all items
constexpr int textInset = 24;  // room for the check mark
constexpr int trailing = 14;
constexpr int shortcutGap = 28;
constexpr int narrowest = 180;
constexpr int widest = 480;
constexpr int gap = 4;  // to the anchor
constexpr int radius = 8;

constexpr int grabRetry = 25;  // milliseconds
constexpr int mostGrabs = 40;

const QColor backgroundColor(44, 44, 48);
const QColor borderColor(255, 255, 255, 40);
const QColor textColor(240, 240, 240);
const QColor dimmedColor(240, 240, 240, 110);
const QColor selectionColor(10, 108, 255);

bool hasX11() {
  return QGuiApplication::platformName() == "xcb";
}

QString shortcut(const PopUpMenuItem& item) {
  return item.keyEquivalent.empty()
             ? QString()
             : "Ctrl+" + QString::fromStdString(item.keyEquivalent).toUpper();
}

}  // namespace

PopUpWindow::PopUpWindow(std::vector<PopUpMenuItem> items,
                         std::function<void(std::function<void()>)> done)
    : items_(std::move(items)), done_(std::move(done)) {
  setFlags(Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
  setTitle("Plemora");
  retry_.setInterval(grabRetry);
  QObject::connect(&retry_, &QTimer::timeout, this, [this] { grab(); });
}

QFont PopUpWindow::menuFont() const {
  QFont font = QGuiApplication::font();
  font.setPixelSize(13);
  return font;
}

int PopUpWindow::rowHeight(const PopUpMenuItem& item) const {
  return item.title.empty() ? separatorHeight : itemHeight;
}

QSize PopUpWindow::contentSize() const {
  const QFontMetrics metrics(menuFont());
  int width = narrowest;
  int height = 2 * padding;
  for (const PopUpMenuItem& item : items_) {
    int text = metrics.horizontalAdvance(QString::fromStdString(item.title));
    if (const QString keys = shortcut(item); !keys.isEmpty()) {
      text += shortcutGap + metrics.horizontalAdvance(keys);
    }
    width = std::max(width, text + textInset + trailing + 2 * padding);
    height += rowHeight(item);
  }
  return {std::min(width, widest), height};
}

QRect PopUpWindow::rowRect(int index) const {
  int y = padding;
  for (int i = 0; i < index; ++i) {
    y += rowHeight(items_[static_cast<std::size_t>(i)]);
  }
  return {padding, y, width() - 2 * padding, rowHeight(items_[static_cast<std::size_t>(index)])};
}

std::optional<int> PopUpWindow::rowAt(const QPoint& point) const {
  for (int i = 0; i < static_cast<int>(items_.size()); ++i) {
    if (rowRect(i).contains(point) && canChoose(i)) {
      return i;
    }
  }
  return std::nullopt;
}

bool PopUpWindow::canChoose(int index) const {
  const PopUpMenuItem& item = items_[static_cast<std::size_t>(index)];
  return !item.title.empty() && item.isEnabled;
}

void PopUpWindow::setItems(std::vector<PopUpMenuItem> items) {
  items_ = std::move(items);
  selected_.reset();
  if (isVisible()) {
    place();
    update();
  }
}

void PopUpWindow::showAt(const QRect& anchor) {
  anchor_ = anchor;
  place();
  // A compositor places a pop-up beside its parent and nowhere else.
  if (QGuiApplication::platformName() == "wayland") {
    setTransientParent(QGuiApplication::focusWindow());
  }
  show();
  requestActivate();
  grab();
}

void PopUpWindow::place() {
  const QSize size = contentSize();
  const QScreen* screen = QGuiApplication::screenAt(anchor_.center());
  if (!screen) {
    screen = QGuiApplication::primaryScreen();
  }
  const QRect room = screen ? screen->availableGeometry() : QRect(QPoint(), size);
  const int below = anchor_.bottom() + 1 + gap;
  const int above = anchor_.top() - gap - size.height();
  int y = below + size.height() <= room.bottom() + 1 ? below : above;
  y = std::clamp(y, room.top(), std::max(room.top(), room.bottom() + 1 - size.height()));
  int x = anchor_.center().x() - size.width() / 2;
  x = std::clamp(x, room.left(), std::max(room.left(), room.right() + 1 - size.width()));
  setGeometry(QRect(QPoint(x, y), size));
  // A shape instead of an alpha channel: it needs no compositing manager.
  QPainterPath outline;
  outline.addRoundedRect(QRectF(QPointF(), QSizeF(size)), radius, radius);
  if (hasX11()) {
    setMask(QRegion(outline.toFillPolygon().toPolygon()));
  }
}

void PopUpWindow::grab() {
  if (!hasX11()) {
    return;  // elsewhere a pop-up gets every click by itself, or loses the focus
  }
  // Whoever opened the menu may hold the pointer until the button is released.
  const bool hasAll = setMouseGrabEnabled(true) && setKeyboardGrabEnabled(true);
  if (hasAll || ++attempts_ >= mostGrabs || isDone_) {
    retry_.stop();
  } else if (!retry_.isActive()) {
    retry_.start();
  }
}

void PopUpWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(QRect(QPoint(), size()), backgroundColor);
  painter.setPen(borderColor);
  painter.drawRoundedRect(QRectF(QPointF(), QSizeF(size())).adjusted(0.5, 0.5, -0.5, -0.5), radius,
                          radius);
  painter.setFont(menuFont());
  const QFontMetrics metrics(menuFont());
  for (int i = 0; i < static_cast<int>(items_.size()); ++i) {
    const PopUpMenuItem& item = items_[static_cast<std::size_t>(i)];
    const QRect row = rowRect(i);
    if (item.title.empty()) {
      painter.fillRect(row.left() + 6, row.center().y(), row.width() - 12, 1, borderColor);
      continue;
    }
    if (selected_ == i) {
      painter.setPen(Qt::NoPen);
      painter.setBrush(selectionColor);
      painter.drawRoundedRect(row, 5, 5);
    }
    painter.setPen(item.isEnabled ? textColor : dimmedColor);
    const QRect text = row.adjusted(textInset, 0, -trailing, 0);
    const QString keys = shortcut(item);
    const int room = text.width() - (keys.isEmpty() ? 0 : metrics.horizontalAdvance(keys) + gap);
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignLeft,
                     metrics.elidedText(QString::fromStdString(item.title), Qt::ElideRight, room));
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignRight, keys);
    if (item.isChecked) {
      painter.setPen(QPen(textColor, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
      const QPointF corner(row.left() + 11, row.center().y() + 4.5);
      painter.drawPolyline(
          QPolygonF({corner + QPointF(-3.5, -4), corner, corner + QPointF(5, -8)}));
    }
  }
}

void PopUpWindow::select(std::optional<int> index) {
  if (index != selected_) {
    selected_ = index;
    update();
  }
}

void PopUpWindow::mouseMoveEvent(QMouseEvent* event) {
  select(rowAt(event->position().toPoint()));
}

void PopUpWindow::mousePressEvent(QMouseEvent* event) {
  const QPoint point = event->position().toPoint();
  if (!QRect(QPoint(), size()).contains(point)) {
    choose(std::nullopt);
    return;
  }
  isPressed_ = true;
  select(rowAt(point));
}

void PopUpWindow::mouseReleaseEvent(QMouseEvent* event) {
  // The release of the click that opened the menu chooses nothing, unless it was drawn onto it.
  const auto row = rowAt(event->position().toPoint());
  if (row && (isPressed_ || selected_ == row)) {
    choose(row);
  }
}

void PopUpWindow::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Escape:
      choose(std::nullopt);
      break;
    case Qt::Key_Down:
    case Qt::Key_Tab:
      step(1);
      break;
    case Qt::Key_Up:
    case Qt::Key_Backtab:
      step(-1);
      break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
      if (selected_) {
        choose(selected_);
      }
      break;
    default:
      break;
  }
}

void PopUpWindow::step(int direction) {
  const int count = static_cast<int>(items_.size());
  int index = selected_.value_or(direction > 0 ? -1 : count);
  for (int i = 0; i < count; ++i) {
    index = (index + direction + count) % count;
    if (canChoose(index)) {
      select(index);
      return;
    }
  }
}

void PopUpWindow::focusOutEvent(QFocusEvent*) {
  choose(std::nullopt);
}

bool PopUpWindow::event(QEvent* event) {
  if (event->type() == QEvent::Leave) {
    select(std::nullopt);
  } else if (event->type() == QEvent::Close) {
    choose(std::nullopt);
  }
  return QRasterWindow::event(event);
}

void PopUpWindow::close() {
  isDone_ = true;
  retry_.stop();
  if (hasX11()) {
    setMouseGrabEnabled(false);
    setKeyboardGrabEnabled(false);
  }
  hide();
}

void PopUpWindow::abandon() {
  isAbandoned_ = true;
  close();
}

void PopUpWindow::choose(std::optional<int> index) {
  if (isDone_) {
    return;
  }
  close();
  const auto action = index ? items_[static_cast<std::size_t>(*index)].action : nullptr;
  QMetaObject::invokeMethod(
      this,
      [this, action] {
        if (!isAbandoned_) {
          done_(action);
        }
      },
      Qt::QueuedConnection);
}

}  // namespace plemora
