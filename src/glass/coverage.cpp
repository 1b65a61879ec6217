#include "glass/coverage.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "glass/pixel_kernel.h"

namespace plemora {

namespace {

/// What edges contribute to one pixel and to those right of it.
struct Cell {
  int y = 0;
  int x = 0;
  double area = 0;   ///< of the pixel, to the right of the edges, signed
  double cover = 0;  ///< height of the edges in the pixel, signed
};

/// Splits edges at the borders of rows and pixels.
class CellList {
 public:
  explicit CellList(const PixelRect& clip) : clip_(clip) {}

  void addEdge(Point from, Point to) {
    const bool isDown = from.y < to.y;
    const Point top = isDown ? from : to;
    const Point bottom = isDown ? to : from;
    const double slope = (bottom.x - top.x) / (bottom.y - top.y);
    const double first = std::max<double>(top.y, clip_.y);
    const double last = std::min<double>(bottom.y, clip_.maxY());
    if (!(first < last)) {
      return;
    }
    const double sign = isDown ? 1 : -1;
    double y = first;
    double x = top.x + (first - top.y) * slope;
    for (int row = static_cast<int>(std::floor(first)); y < last; ++row) {
      const double nextY = std::min<double>(last, row + 1);
      const double nextX = nextY == bottom.y ? bottom.x : top.x + (nextY - top.y) * slope;
      addInRow(row, x, nextX, sign * (nextY - y));
      x = nextX;
      y = nextY;
    }
  }

  std::vector<Cell>& sorted() {
    std::sort(cells_.begin(), cells_.end(),
              [](const Cell& a, const Cell& b) { return std::tie(a.y, a.x) < std::tie(b.y, b.x); });
    return cells_;
  }

 private:
  /// An edge of that signed height within one row. Left of the clip it counts as at its border,
  /// right of the clip not at all.
  void addInRow(int row, double fromX, double toX, double height) {
    const double left = std::min(fromX, toX);
    const double right = std::max(fromX, toX);
    const auto share = [&](double a, double b) {
      return right > left ? height * (b - a) / (right - left) : height;
    };
    if (right <= clip_.x) {
      add(row, clip_.x, clip_.x, height);
      return;
    }
    double x = left;
    if (x < clip_.x) {
      add(row, clip_.x, clip_.x, share(x, clip_.x));
      x = clip_.x;
    }
    const double end = std::min<double>(right, clip_.maxX());
    if (right == left && x < clip_.maxX()) {
      add(row, static_cast<int>(std::floor(x)), x, height);
    }
    while (x < end) {
      const int cell = static_cast<int>(std::floor(x));
      const double next = std::min<double>(end, cell + 1);
      add(row, cell, (x + next) / 2, share(x, next));
      x = next;
    }
  }

  void add(int row, int cell, double middleX, double height) {
    const double area = height * (cell + 1 - middleX);
    if (!cells_.empty() && cells_.back().y == row && cells_.back().x == cell) {
      cells_.back().area += area;
      cells_.back().cover += height;
    } else {
      cells_.push_back({row, cell, area, height});
    }
  }

  PixelRect clip_;
  std::vector<Cell> cells_;
};

std::uint8_t coverageFor(double winding, FillRule rule) {
  double inside = std::abs(winding);
  if (rule == FillRule::evenOdd) {
    inside = std::abs(inside - 2 * std::round(inside / 2));
  }
  return static_cast<std::uint8_t>(std::lround(255 * std::min(inside, 1.0)));
}

void addSpan(std::vector<CoverageSpan>& spans, const CoverageSpan& span) {
  if (span.coverage == 0 || span.width <= 0) {
    return;
  }
  if (!spans.empty()) {
    CoverageSpan& last = spans.back();
    if (last.y == span.y && last.x + last.width == span.x && last.coverage == span.coverage) {
      last.width += span.width;
      return;
    }
  }
  spans.push_back(span);
}

}  // namespace

std::vector<CoverageSpan> coverageOf(const Polygons& polygons, FillRule rule,
                                     const PixelRect& clip) {
  std::vector<CoverageSpan> spans;
  if (clip.isEmpty()) {
    return spans;
  }
  CellList list(clip);
  for (const auto& polygon : polygons) {
    for (std::size_t i = 0; i < polygon.size(); ++i) {
      list.addEdge(polygon[i], polygon[(i + 1) % polygon.size()]);
    }
  }
  const auto& cells = list.sorted();
  for (std::size_t i = 0; i < cells.size();) {
    const int y = cells[i].y;
    double winding = 0;
    while (i < cells.size() && cells[i].y == y) {
      const int x = cells[i].x;
      double area = winding;
      for (; i < cells.size() && cells[i].y == y && cells[i].x == x; ++i) {
        area += cells[i].area;
        winding += cells[i].cover;
      }
      addSpan(spans, {y, x, 1, coverageFor(area, rule)});
      const int end = i < cells.size() && cells[i].y == y ? cells[i].x : clip.maxX();
      addSpan(spans, {y, x + 1, end - x - 1, coverageFor(winding, rule)});
    }
  }
  return spans;
}

void clipTo(Raster& raster, const std::vector<CoverageSpan>& spans) {
  auto span = spans.begin();
  for (int y = 0; y < raster.height(); ++y) {
    Pixel* row = raster.row(y);
    int x = 0;
    for (; span != spans.end() && span->y == y; ++span) {
      std::fill(row + x, row + span->x, 0);
      x = span->x + span->width;
      if (span->coverage < 255) {
        pixelKernel().scale(row + span->x, span->coverage, static_cast<std::size_t>(span->width));
      }
    }
    std::fill(row + x, row + raster.width(), 0);
  }
}

}  // namespace plemora
