#include "skin/look/rim_layer.h"

#include <gmock/gmock.h>

#include "skin/look/glass_fill.h"

namespace plemora {
namespace {

using testing::ElementsAre;

const GradientContent& gradientOf(const RimLayer& rim) {
  return std::get<GradientContent>(rim.layer()->sublayers.at(0)->content);
}

const ShapeContent& strokeOf(const RimLayer& rim) {
  return std::get<ShapeContent>(rim.layer()->sublayers.at(0)->mask->content);
}

TEST(RimLayerTest, IsBrightestAtTheTopWhicheverWayTheViewPoints) {
  for (const bool flipped : {false, true}) {
    RimLayer rim(0.56, 0.18);
    rim.update({308, 200}, 15, flipped, 1);
    const Rect frame{0, 0, 308, 200};
    ASSERT_EQ(rim.layer()->sublayers.size(), 1U);
    const Layer& gradient = *rim.layer()->sublayers[0];
    EXPECT_EQ(rim.layer()->frame, frame);
    EXPECT_EQ(gradient.frame, frame);
    EXPECT_EQ(gradient.mask->frame, frame);

    const GradientContent& colors = gradientOf(rim);
    EXPECT_THAT(colors.colors,
                ElementsAre(Color::white(0.56), Color::white(0.18), Color::white(0.18)));
    EXPECT_THAT(colors.locations, ElementsAre(0, 0.12, 1));
    EXPECT_EQ(colors.start, (Point{0.5, 0}));
    EXPECT_EQ(colors.end, (Point{0.5, 1}));

    const ShapeContent& stroke = strokeOf(rim);
    EXPECT_EQ(stroke.fill, std::nullopt);
    EXPECT_EQ(stroke.stroke, Color::white());
    EXPECT_EQ(stroke.lineWidth, 1.0);
    EXPECT_THAT(stroke.path, ElementsAre(RoundedRect{{0.5, 0.5, 307, 199}, 14.5}));
  }
}

TEST(RimLayerTest, BecomesTwoHairlinesOnRetinaScreensAndStaysSo) {
  RimLayer rim(0.56, 0.18);
  const auto layer = rim.layer();
  rim.update({100, 50}, 10, false, 1.5);
  EXPECT_EQ(layer->sublayers.size(), 1U);
  for (const double scale : {2.0, 1.0, 3.0}) {
    rim.update({200, 80}, 10, false, scale);
    ASSERT_EQ(layer->sublayers.size(), 2U) << "one inner line, however often the screen changes";
    EXPECT_THAT(gradientOf(rim).colors, ElementsAre(Color::white(0.56), Color::white(0.56)));
    EXPECT_THAT(gradientOf(rim).locations, ElementsAre(0, 1));
    EXPECT_EQ(strokeOf(rim).lineWidth, 0.5);
    EXPECT_THAT(strokeOf(rim).path, ElementsAre(RoundedRect{{0.25, 0.25, 199.5, 79.5}, 9.75}));

    const Layer& inner = *layer->sublayers[1];
    const auto& line = std::get<ShapeContent>(inner.content);
    EXPECT_EQ(inner.name, "inner");
    EXPECT_EQ(inner.frame, (Rect{0, 0, 200, 80}));
    EXPECT_EQ(line.stroke, Color::white(0.18));
    EXPECT_EQ(line.fill, std::nullopt);
    EXPECT_EQ(line.lineWidth, 0.5);
    EXPECT_THAT(line.path, ElementsAre(RoundedRect{{0.75, 0.75, 198.5, 78.5}, 9.25}));
  }
  EXPECT_EQ(rim.layer(), layer) << "who shows it holds on to the same record";
}

TEST(RimLayerTest, SquareCornersHaveNoNegativeRadius) {
  for (const double scale : {1.0, 2.0}) {
    RimLayer rim(0.5, 0.1);
    rim.update({10, 10}, 0, true, scale);
    EXPECT_EQ(strokeOf(rim).path.at(0).radius, 0);
  }
}

TEST(GlassFillTest, StandsOutFromTheAppearance) {
  EXPECT_EQ(GlassFill::resolve(true), Color::white());
  EXPECT_EQ(GlassFill::resolve(false), Color::black());
}

}  // namespace
}  // namespace plemora
