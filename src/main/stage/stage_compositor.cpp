#include "main/stage/stage_compositor.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <utility>

#include "glass/glass_view.h"
#include "glass/outline.h"
#include "main/stage/desktop_drawing.h"
#include "main/stage/drawing_painter.h"
#include "main/stage/drawing_parts.h"
#include "main/stage/stage_glass.h"

namespace plemora {

namespace {

constexpr double pointerSide = 22;
constexpr double draggedSide = 48;  // of a file that the pointer takes along
constexpr double draggedAlpha = 0.8;
constexpr double titledRadius = GlassWindow::titledRadius;
// No window has them: those of what belongs to a window are that much less than the window's own,
// made negative.
constexpr std::int64_t numberOfShadow = -1'000'000;
constexpr std::int64_t numberOfButtons = -2'000'000'000;

/// The container's outline, in pixels.
QPainterPath pathOf(const RoundedRect& container, double scale) {
  Polygons polygons;
  addOutline(polygons, container, {}, scale);
  QPainterPath path;
  for (const auto& polygon : polygons) {
    QPolygonF points;
    for (const Point& point : polygon) {
      points << QPointF(point.x, point.y);
    }
    path.addPolygon(points);
    path.closeSubpath();
  }
  return path;
}

void paintContents(GlassWindow& window, double scale, QPoint corner, QPainter& painter) {
  painter.translate(corner);
  painter.setRenderHint(QPainter::Antialiasing);
  for (const GlassWindow::Content& content : window.contents()) {
    if (!(content.alpha > 0)) {
      continue;
    }
    QImage picture = content.view->picture(content.place.size(), scale);
    picture.setDevicePixelRatio(1);
    const QPoint at = QPointF(content.place.x * scale, content.place.y * scale).toPoint();
    painter.setOpacity(content.alpha);
    if (!window.container()) {
      painter.drawImage(at, picture);
      continue;
    }
    // As a brush: the painter clips no edge smoothly, but fills any.
    QPainterPath area;
    area.addRect(QRectF(QRect(at, picture.size())));
    QBrush brush(picture);
    brush.setTransform(QTransform::fromTranslate(at.x(), at.y()));
    painter.fillPath(pathOf(*window.container(), scale).intersected(area), brush);
  }
}

/// Changes the colours of every pixel.
void applyMatrix(const ColorMatrix& matrix, BackdropImage& image) {
  for (unsigned int& pixel : image.pixels) {
    const float parts[] = {static_cast<float>(pixel >> 16 & 0xff),
                           static_cast<float>(pixel >> 8 & 0xff), static_cast<float>(pixel & 0xff)};
    unsigned int result = 0xff;
    for (std::size_t row = 0; row < 3; ++row) {
      const float* factor = matrix.data() + 5 * row;
      const float value = factor[0] * parts[0] + factor[1] * parts[1] + factor[2] * parts[2] +
                          255 * (factor[3] + factor[4]);
      result = result << 8 | static_cast<unsigned int>(std::clamp(value, 0.0F, 255.0F) + 0.5F);
    }
    pixel = result;
  }
}

}  // namespace

const QImage& StageCompositor::picture(int screen) {
  const auto& screens = desktop_.screens.screens().get();
  const auto found = std::ranges::find(screens, screen, &Screen::id);
  if (found == screens.end()) {
    canvases_.erase(screen);
    return nothing_;
  }
  Canvas& canvas = canvases_[screen];
  prepare(canvas, *found);
  std::vector<Sheet> sheets = this->sheets();
  std::erase_if(sheets, [&](const Sheet& sheet) { return placeOf(sheet, canvas).isEmpty(); });

  const std::size_t kept = std::min(sheets.size(), canvas.painted.size());
  std::size_t same = 0;
  while (same < kept && isAsPainted(sheets[same], canvas.painted[same])) {
    ++same;
  }
  // A window that has changed by itself alone is still in front of the same things.
  const bool isInPlace = same < kept && sheets[same].number == canvas.painted[same].sheet.number &&
                         sheets[same].frame == canvas.painted[same].sheet.frame;
  unpaint(canvas, same);
  for (std::size_t i = same; i < sheets.size(); ++i) {
    paint(canvas, std::move(sheets[i]), i == same && isInPlace);
  }
  return canvas.picture;
}

QRegion StageCompositor::takeDamage(int screen) {
  const auto found = canvases_.find(screen);
  return found != canvases_.end() ? std::exchange(found->second.damage, {}) : QRegion();
}

void StageCompositor::prepare(Canvas& canvas, const Screen& screen) {
  const Rect frame = desktop_.space.flipped(screen.frame);
  if (!canvas.picture.isNull() && canvas.screen == screen && canvas.wallpaper == wallpaper_ &&
      canvas.origin == frame.origin()) {
    return;
  }
  canvas.screen = screen;
  canvas.wallpaper = wallpaper_;
  canvas.origin = frame.origin();
  canvas.painted.clear();
  canvas.picture = paintWallpaper(
      wallpaper_, QSize(static_cast<int>(frame.width), static_cast<int>(frame.height)),
      screen.scale);
  canvas.damage = canvas.picture.rect();
}

std::vector<StageCompositor::Sheet> StageCompositor::sheets() {
  std::vector<Sheet> sheets;
  const std::vector<StageWindowRecord> records = desktop_.windowServer.records();
  for (auto record = records.rbegin(); record != records.rend(); ++record) {
    if (!(record->alpha > 0)) {
      continue;
    }
    Sheet sheet{record->number, {}, record->alpha, {}, nullptr};
    const auto* window = std::get_if<StageWindow*>(&record->model);
    if (window == nullptr) {
      sheet.drawing = drawingOf(*record, desktop_);
      sheets.push_back(std::move(sheet));
      continue;
    }
    sheet.window = windows_.before(*window);
    sheet.frame = desktop_.space.flipped(record->frame);
    if (!(*window)->titled) {
      sheets.push_back(std::move(sheet));
      continue;
    }
    // What the desktop adds to such a window lies below and above what the program shows in it.
    const Rect frame = sheet.frame;
    sheets.push_back({numberOfShadow - record->number,
                      {},
                      record->alpha,
                      {ShadowMark{frame, titledRadius, 26, 10, 0.42}},
                      nullptr});
    sheets.push_back(std::move(sheet));
    Drawing buttons;
    const Rect& close = StageWindow::closeButton;
    addWindowButtons(buttons, close.offset(frame.x, frame.y));
    sheets.push_back(
        {numberOfButtons - record->number, {}, record->alpha, std::move(buttons), nullptr});
  }
  if (desktop_.fileDrag.path()) {
    const Point tip = desktop_.space.flipped(desktop_.input.pointerLocation());
    const std::string& name = desktop_.program.name();
    sheets.push_back(
        {-2,
         {},
         draggedAlpha,
         {AppIconMark{{tip.x - draggedSide / 2, tip.y - draggedSide / 2, draggedSide, draggedSide},
                      name,
                      symbolOfApp(name)}},
         nullptr});
  }
  if (showsPointer_) {
    const Point tip = desktop_.space.flipped(desktop_.input.pointerLocation());
    sheets.push_back({-1, {}, 1, {PointerMark{{tip.x, tip.y, pointerSide, pointerSide}}}, nullptr});
  }
  return sheets;
}

bool StageCompositor::isAsPainted(const Sheet& sheet, const Painted& painted) {
  return sheet == painted.sheet && !(sheet.window != nullptr && sheet.window->isStale());
}

QRect StageCompositor::placeOf(const Sheet& sheet, const Canvas& canvas) const {
  const double scale = canvas.screen.scale;
  const Rect rect = sheet.window != nullptr ? sheet.frame : boundsOf(sheet.drawing);
  const QRectF pixels((rect.x - canvas.origin.x) * scale, (rect.y - canvas.origin.y) * scale,
                      rect.width * scale, rect.height * scale);
  if (sheet.window != nullptr) {
    // Its picture lies on whole pixels.
    return QRect(pixels.topLeft().toPoint(), QSize(static_cast<int>(std::ceil(pixels.width())),
                                                   static_cast<int>(std::ceil(pixels.height()))))
        .intersected(canvas.picture.rect());
  }
  return pixels.toAlignedRect().intersected(canvas.picture.rect());
}

void StageCompositor::unpaint(Canvas& canvas, std::size_t count) {
  while (canvas.painted.size() > count) {
    const Painted& last = canvas.painted.back();
    QPainter painter(&canvas.picture);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(last.place.topLeft(), last.below);
    canvas.damage += last.place;
    canvas.painted.pop_back();
  }
}

void StageCompositor::paint(Canvas& canvas, Sheet sheet, bool isBelowTheSame) {
  const QRect place = placeOf(sheet, canvas);
  QImage below = canvas.picture.copy(place);
  // Painted apart from the picture: glass must not see its own window, and alpha is the whole's.
  QImage layer(place.size(), QImage::Format_ARGB32_Premultiplied);
  layer.fill(Qt::transparent);
  if (sheet.window != nullptr) {
    paintWindow(canvas, sheet, place, isBelowTheSame, layer);
  } else {
    DrawingPainter(canvas.picture, canvas.origin, layer, place.topLeft(), canvas.screen.scale)
        .paint(sheet.drawing);
  }
  QPainter painter(&canvas.picture);
  painter.setOpacity(sheet.alpha);
  painter.drawImage(place.topLeft(), layer);
  canvas.damage += place;
  canvas.painted.push_back({std::move(sheet), place, std::move(below)});
  ++paintCount_;
}

void StageCompositor::paintWindow(const Canvas& canvas, const Sheet& sheet, const QRect& place,
                                  bool isBelowTheSame, QImage& layer) {
  const double scale = canvas.screen.scale;
  GlassWindow& window = *sheet.window;
  GlassView& glass = window.glass();
  glass.setSize(sheet.frame.size());
  glass.setScale(scale);
  glass.setDark(window.options().isDark || desktop_.appearance.isDark());
  const QPoint corner(static_cast<int>(std::lround((sheet.frame.x - canvas.origin.x) * scale)),
                      static_cast<int>(std::lround((sheet.frame.y - canvas.origin.y) * scale)));
  const auto sight = backdropScreens_.try_emplace(&window, canvas.screen.id).first;
  if (!isBelowTheSame || sight->second != canvas.screen.id) {
    sight->second = canvas.screen.id;
    const int margin = static_cast<int>(std::ceil(glass.backdropMargin() * scale));
    const QRect seen =
        QRect(corner, QSizeF(sheet.frame.width * scale, sheet.frame.height * scale).toSize())
            .adjusted(-margin, -margin, margin, margin)
            .intersected(canvas.picture.rect());
    BackdropImage behind = backdropOf(canvas.picture, seen, scale);
    applyMatrix(stageBackdropResponse(desktop_.appearance.isDark(),
                                      glassReleaseOf(desktop_.systemInfo.version())),
                behind);
    glass.setBackdrop(std::move(behind),
                      {(seen.x() - corner.x()) / scale, (seen.y() - corner.y()) / scale,
                       seen.width() / scale, seen.height() / scale});
  }
  QPainter painter(&layer);
  painter.drawImage(corner - place.topLeft(), imageOf(glass.render()));
  paintContents(window, scale, corner - place.topLeft(), painter);
  window.drawn();
}

}  // namespace plemora
