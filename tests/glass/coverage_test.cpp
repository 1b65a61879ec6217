#include "glass/coverage.h"

#include <gmock/gmock.h>

#include <functional>

#include "pictures.h"

namespace plemora {
namespace {

/// The coverage as a picture of alphas; checks the order and the limits of the spans.
std::vector<int> planeOf(const std::vector<CoverageSpan>& spans, const PixelRect& clip) {
  std::vector<int> plane(static_cast<std::size_t>(clip.width * clip.height));
  int lastY = clip.y;
  int lastX = clip.x;
  for (const CoverageSpan& span : spans) {
    EXPECT_TRUE(span.y > lastY || (span.y == lastY && span.x >= lastX));
    EXPECT_TRUE(span.x >= clip.x && span.x + span.width <= clip.maxX() && span.y < clip.maxY());
    lastY = span.y;
    lastX = span.x + span.width;
    for (int x = span.x; x < lastX; ++x) {
      plane[static_cast<std::size_t>((span.y - clip.y) * clip.width + x - clip.x)] = span.coverage;
    }
  }
  return plane;
}

/// Counts the samples of a fine grid that are inside.
int sampled(int x, int y, const std::function<bool(double, double)>& isInside) {
  constexpr int grid = 16;
  int count = 0;
  for (int i = 0; i < grid; ++i) {
    for (int j = 0; j < grid; ++j) {
      count += isInside(x + (i + 0.5) / grid, y + (j + 0.5) / grid) ? 1 : 0;
    }
  }
  return count * 255 / (grid * grid);
}

bool isInRounded(const Rect& rect, double radius, double x, double y) {
  const double dx = std::max({rect.minX() + radius - x, x - rect.maxX() + radius, 0.0});
  const double dy = std::max({rect.minY() + radius - y, y - rect.maxY() + radius, 0.0});
  return x >= rect.minX() && x <= rect.maxX() && y >= rect.minY() && y <= rect.maxY() &&
         dx * dx + dy * dy <= radius * radius;
}

struct ShapeCase {
  const char* name;
  std::vector<RoundedRect> path;
  FillRule rule = FillRule::nonZero;
  double strokeWidth = 0;
  std::function<bool(double, double)> isInside;
};

TEST(CoverageTest, MatchesASampledShape) {
  const Rect outer{2.3, 1.7, 30.4, 20.9};
  const Rect inner = outer.inset(5.2, 4.1);
  const Rect beyond{-10, -8, 34, 50};
  const auto in = [](Rect rect, double radius) {
    return [=](double x, double y) { return isInRounded(rect, radius, x, y); };
  };
  const ShapeCase cases[] = {
      {"rectangle between pixels", {{outer, 0}}, FillRule::nonZero, 0, in(outer, 0)},
      {"rounded", {{outer, 7.5}}, FillRule::nonZero, 0, in(outer, 7.5)},
      {"radius cut to half the side", {{outer, 99}}, FillRule::nonZero, 0, in(outer, 20.9 / 2)},
      {"reaching beyond the clip", {{beyond, 9}}, FillRule::nonZero, 0, in(beyond, 9)},
      {"hole by even-odd",
       {{outer, 7}, {inner, 3}},
       FillRule::evenOdd,
       0,
       [=](double x, double y) {
         return isInRounded(outer, 7, x, y) && !isInRounded(inner, 3, x, y);
       }},
      {"no hole by non-zero", {{outer, 7}, {inner, 3}}, FillRule::nonZero, 0, in(outer, 7)},
      {"stroke",
       {{inner, 4}},
       FillRule::nonZero,
       3,
       [=](double x, double y) {
         return isInRounded(inner.inset(-1.5, -1.5), 5.5, x, y) &&
                !isInRounded(inner.inset(1.5, 1.5), 2.5, x, y);
       }},
      {"stroke wider than the shape",
       {{{10, 10, 4, 4}, 0}},
       FillRule::nonZero,
       6,
       in({7, 7, 10, 10}, 0)},
  };
  for (const PixelRect& clip : {PixelRect{0, 0, 40, 30}, PixelRect{7, 5, 11, 12}}) {
    for (const ShapeCase& c : cases) {
      SCOPED_TRACE(c.name);
      Polygons polygons;
      for (const RoundedRect& part : c.path) {
        if (c.strokeWidth > 0) {
          addStroke(polygons, part, c.strokeWidth, {}, 1);
        } else {
          addOutline(polygons, part, {}, 1);
        }
      }
      const auto plane = planeOf(coverageOf(polygons, c.rule, clip), clip);
      for (int y = clip.y; y < clip.maxY(); ++y) {
        for (int x = clip.x; x < clip.maxX(); ++x) {
          const int actual =
              plane[static_cast<std::size_t>((y - clip.y) * clip.width + x - clip.x)];
          // 16 x 16 samples tell an area to about 16 of 255 where an edge runs along them.
          ASSERT_NEAR(actual, sampled(x, y, c.isInside), 18) << x << ", " << y;
        }
      }
    }
  }
}

TEST(CoverageTest, ScaleAndOriginAreThoseOfPoints) {
  Polygons polygons;
  addOutline(polygons, {{1, 1, 2, 1}, 0}, {3, 2}, 2);
  EXPECT_THAT(coverageOf(polygons, FillRule::nonZero, {0, 0, 20, 20}),
              testing::ElementsAre(CoverageSpan{6, 8, 4, 255}, CoverageSpan{7, 8, 4, 255}));
}

TEST(CoverageTest, ContinuousCornersEaseInAndMeetTheCircleInItsMiddle) {
  const Rect rect{0, 0, 100, 100};
  Polygons round;
  Polygons continuous;
  addOutline(round, {rect, 20, false}, {}, 1);
  addOutline(continuous, {rect, 20, true}, {}, 1);
  const PixelRect clip{0, 0, 100, 100};
  const auto a = planeOf(coverageOf(round, FillRule::nonZero, clip), clip);
  const auto b = planeOf(coverageOf(continuous, FillRule::nonZero, clip), clip);
  const auto at = [](const std::vector<int>& plane, int x, int y) {
    return plane[static_cast<std::size_t>(y * 100 + x)];
  };
  EXPECT_NEAR(at(a, 5, 5), at(b, 5, 5), 12);  // where both cross the diagonal
  EXPECT_EQ(at(a, 22, 0), 255);               // the circle has ended,
  EXPECT_LT(at(b, 22, 0), 255);               // the other curve not yet,
  EXPECT_EQ(at(b, 32, 0), 255);               // but here
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(at(b, i, 3), at(b, 99 - i, 3)) << i;  // alike on all sides
    EXPECT_EQ(at(b, i, 3), at(b, 3, i)) << i;
    EXPECT_EQ(at(b, i, 3), at(b, i, 96)) << i;
  }
  // Without room to ease in it is the circle.
  Polygons disc;
  addOutline(disc, {rect, 50, true}, {}, 1);
  const auto c = planeOf(coverageOf(disc, FillRule::nonZero, clip), clip);
  EXPECT_NEAR(at(c, 14, 14),
              sampled(14, 14, [&](double x, double y) { return isInRounded(rect, 50, x, y); }), 12);
}

}  // namespace
}  // namespace plemora
