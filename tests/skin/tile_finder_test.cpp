#include "skin/tile_finder.h"

#include <gtest/gtest.h>

#include <limits>

#include "adapters/stage/scripted_accessibility.h"
#include "skin/module_rect.h"

namespace plemora {
namespace {

using ElementID = ScriptedAccessibility::ElementID;
constexpr const char* identifier = "com.quorvane.mixer.controls";
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

class TileFinderTest : public testing::Test {
 protected:
  TileFinderTest() {
    accessibility.setHook([this](const std::string&) {
      if (++reads == stopAfter) {
        stop.request_stop();
      }
    });
  }
  ElementID add(ElementID parent, ScriptedAccessibility::Attributes attributes = {}) {
    return accessibility.add(parent, "AXChildren", std::move(attributes));
  }
  void addTile(ElementID parent, double x) {
    accessibility.setFrame(add(parent, {{"AXIdentifier", identifier}}), {x, 0, 10, 10});
  }
  std::size_t found() { return findTiles(*accessibility.application(1), stop.get_token()).size(); }

  ScriptedAccessibility accessibility;
  ElementID window = accessibility.add(accessibility.root(1), "AXWindows");
  std::stop_source stop;
  int reads = 0;
  int stopAfter = -1;
};

TEST_F(TileFinderTest, LooksFiveLevelsBelowTheWindowsAndNotIntoATile) {
  ElementID parent = window;
  for (int depth = 1; depth <= 6; ++depth) {
    accessibility.setFrame(add(parent, {{"AXIdentifier", "x." + std::string(identifier) + ".y"}}),
                           {0, 0, 10, 10});
    parent = add(parent);
  }
  EXPECT_EQ(found(), 5U);
  accessibility.set(window, "AXIdentifier", std::string(identifier));
  EXPECT_EQ(found(), 1U);
}

TEST_F(TileFinderTest, SortsFromLeftToRightAndThoseWithoutAPlaceLast) {
  for (const double x : {30.0, nan, 10.0, 20.0}) {
    addTile(window, x);
  }
  accessibility.add(window, "AXChildren", {{"AXIdentifier", identifier}});
  const auto tiles = findTiles(*accessibility.application(1), stop.get_token());
  ASSERT_EQ(tiles.size(), 5U);
  const auto frames = tileFrames({tiles.begin(), tiles.begin() + 3});
  EXPECT_EQ(frames, (std::vector<Rect>{{10, 0, 10, 10}, {20, 0, 10, 10}, {30, 0, 10, 10}}));
  EXPECT_FALSE(tileFrames(tiles));
}

TEST_F(TileFinderTest, FindsATileBehindTenThousandElements) {
  for (int i = 0; i < 10'000; ++i) {
    add(window);
  }
  addTile(window, 0);
  EXPECT_EQ(found(), 1U);
}

TEST_F(TileFinderTest, ComesToAnEndInATreeThatHasNone) {
  addTile(window, 0);
  accessibility.set(window, "AXChildren", std::vector<ElementID>(1000, window));
  EXPECT_EQ(found(), 0U);
  EXPECT_LT(reads, 50'000);
}

TEST_F(TileFinderTest, StopsWhenItIsToldTo) {
  accessibility.set(window, "AXChildren", std::vector<ElementID>(1000, window));
  stopAfter = 100;
  found();
  EXPECT_LE(reads, stopAfter + 1);
}

TEST_F(TileFinderTest, BelievesNoFrameThatATileCannotHave) {
  const struct {
    Rect frame;
    bool isBelieved;
  } cases[] = {
      {{-1440, -900, 0.5, 1}, true}, {{0, 0, 0, 64}, false},       {{0, 0, -10, 64}, false},
      {{0, 0, 150, 0}, false},       {{1e6, 0, 1e-12, 64}, false}, {{nan, 0, 150, 64}, false},
      {{0, 0, nan, 64}, false},      {{0, 0, 150, nan}, false},    {{1e30, 0, 150, 64}, false},
      {{0, -infinity, 1, 1}, false}, {{0, 0, 1e12, 64}, false},    {{0, 0, 150, infinity}, false}};
  for (const auto& [frame, isBelieved] : cases) {
    const auto tile = accessibility.make();
    accessibility.setFrame(tile, frame);
    EXPECT_EQ(tileFrames({accessibility.reference(tile)}).has_value(), isBelieved)
        << frame.x << " " << frame.y << " " << frame.width << " " << frame.height;
  }
}

TEST(ModuleRectTest, JoinsTwoTilesOfOneRowThatStandCloseEnough) {
  const Rect first{1000, 100, 90, 64};
  const Rect screen{0, 0, 1440, 900};
  const struct {
    std::vector<Rect> frames;
    Rect module;
    bool isWide;
  } cases[] = {{{first}, {1000, 736, 90, 64}, false},
               {{{1000, 100, 200, 64}}, {1000, 736, 200, 64}, false},
               {{{1000, 100, 200.5, 64}}, {1000, 736, 200.5, 64}, true},
               {{first, {1109, 100, 91, 64}}, {1000, 736, 200, 64}, false},
               {{first, {1109, 100, 92, 64}}, {1000, 736, 201, 64}, true},
               {{first, {1110, 100, 92, 64}}, {1000, 736, 90, 64}, false},
               {{first, {1100, 101.5, 110, 64}}, {1000, 734.5, 210, 65.5}, true},
               {{first, {1100, 102, 110, 64}}, {1000, 736, 90, 64}, false},
               {{first, {1100, 100, 110, 66}}, {1000, 736, 90, 64}, false},
               {{first, {1100, 300, 110, 64}, {1100, 100, 110, 64}}, {1000, 736, 90, 64}, false}};
  for (const auto& [frames, module, isWide] : cases) {
    const Rect rect = moduleRect(frames, screen);
    EXPECT_EQ(rect, module) << frames.back().x;
    EXPECT_EQ(isWideModule(rect), isWide) << frames.back().x;
  }
  EXPECT_EQ(pillsOf({first, {1100, 101.5, 110, 64}}, {1000, 734.5, 210, 65.5}),
            (std::vector<Rect>{{0, 0, 90, 64}, {100, 0, 110, 64}}));
}

}  // namespace
}  // namespace plemora
