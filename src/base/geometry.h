#pragma once

#include <algorithm>

namespace plemora {

struct Point {
  double x = 0;
  double y = 0;

  bool operator==(const Point&) const = default;
};

struct Size {
  double width = 0;
  double height = 0;

  bool operator==(const Size&) const = default;
};

/// A rectangle in points. Which way y points is said where one is passed.
struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  double minX() const { return x; }
  double minY() const { return y; }
  double midX() const { return x + width / 2; }
  double midY() const { return y + height / 2; }
  double maxX() const { return x + width; }
  double maxY() const { return y + height; }
  Size size() const { return {width, height}; }
  Point origin() const { return {x, y}; }

  bool isEmpty() const { return !(width > 0 && height > 0); }

  /// The edges at minX and minY belong to it, those at maxX and maxY do not.
  bool contains(const Point& point) const {
    return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
  }

  /// Whether they share an area. An empty rectangle shares none.
  bool intersects(const Rect& other) const {
    return !isEmpty() && !other.isEmpty() && minX() < other.maxX() && other.minX() < maxX() &&
           minY() < other.maxY() && other.minY() < maxY();
  }

  /// The area that both share; an empty rectangle when there is none.
  Rect intersection(const Rect& other) const {
    const double left = std::max(minX(), other.minX());
    const double bottom = std::max(minY(), other.minY());
    const double right = std::min(maxX(), other.maxX());
    const double top = std::min(maxY(), other.maxY());
    return right > left && top > bottom ? Rect{left, bottom, right - left, top - bottom} : Rect{};
  }

  /// Moved in by the given distances on both sides; out when they are negative.
  Rect inset(double horizontal, double vertical) const {
    return {x + horizontal, y + vertical, width - 2 * horizontal, height - 2 * vertical};
  }

  Rect offset(double horizontal, double vertical) const {
    return {x + horizontal, y + vertical, width, height};
  }

  bool operator==(const Rect&) const = default;
};

}  // namespace plemora
