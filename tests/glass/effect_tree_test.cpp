#include "glass/effect_tree.h"

#include <gmock/gmock.h>

#include <limits>
#include <string>

#include "glass/color_matrix.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::FloatNear;
using testing::Pointwise;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::shared_ptr<EffectLayer> find(const std::shared_ptr<EffectLayer>& layer,
                                  const std::string& name) {
  if (layer->name() == name) {
    return layer;
  }
  for (const auto& sublayer : layer->sublayers()) {
    if (auto found = find(sublayer, name)) {
      return found;
    }
  }
  return nullptr;
}

class EffectTreeTest : public testing::Test {
 protected:
  std::shared_ptr<EffectLayer> layer(const char* name) { return find(tree->root(), name); }

  int changes = 0;
  std::unique_ptr<EffectTree> tree =
      std::make_unique<EffectTree>(material(13, true), [this] { ++changes; });
};

TEST_F(EffectTreeTest, HasTheSystemsLayersFromTheBottom) {
  const auto group = tree->root()->sublayers().at(0);
  std::vector<std::string> names;
  for (const auto& part : group->sublayers()) {
    names.push_back(part->name());
  }
  EXPECT_THAT(names, ElementsAre("backdrop", "fill", "tone", "desktop tint"));
  EXPECT_TRUE(layer("backdrop")->respondsTo("setMarginWidth:"));
  EXPECT_FALSE(layer("fill")->respondsTo("setMarginWidth:"));
  EXPECT_TRUE(layer("backdrop")->canMakeFilter("colorMatrix"));
  EXPECT_FALSE(layer("backdrop")->canMakeFilter("swirl"));
}

TEST_F(EffectTreeTest, TakesWhatIsTuned) {
  layer("backdrop")->setValue(2.5, "filters.gaussianBlur.inputRadius");
  layer("backdrop")->setValue(0, "filters.colorSaturate.inputAmount");
  layer("backdrop")->setValue(6, "marginWidth");
  layer("fill")->setValue(0.25, "opacity");
  layer("tone")->setValue(0, "opacity");
  layer("desktop tint")->setValue(1, "hidden");
  EXPECT_EQ(changes, 6);
  const GlassLook look = tree->look();
  EXPECT_EQ(look.blurRadius, 2.5);
  EXPECT_EQ(look.margin, 6);
  EXPECT_EQ(look.matrix, saturationMatrix(0));
  ASSERT_EQ(look.washes.size(), 1U);
  EXPECT_EQ(look.washes[0].alpha, 0.25);
  EXPECT_EQ(look.desktopTint, 0);
}

TEST_F(EffectTreeTest, IgnoresUnknownKeysAndNonsense) {
  const GlassLook before = tree->look();
  layer("backdrop")->setValue(3, "filters.swirl.inputRadius");
  layer("fill")->setValue(3, "marginWidth");
  layer("fill")->setValue(nan, "opacity");
  layer("backdrop")->setValue(nan, "filters.gaussianBlur.inputRadius");
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(tree->look(), before);
  // A filter whose numbers are none.
  auto filters = layer("backdrop")->filters();
  ColorMatrix matrix{};
  matrix[7] = static_cast<float>(nan);
  filters.push_back({"mixerGain", "colorMatrix", matrix});
  layer("backdrop")->setFilters(filters);
  EXPECT_EQ(tree->look(), before);
  // Negative and large ones.
  layer("backdrop")->setValue(-4, "filters.gaussianBlur.inputRadius");
  layer("fill")->setValue(7, "opacity");
  EXPECT_EQ(tree->look().blurRadius, 0);
  EXPECT_EQ(tree->look().washes.at(0).alpha, 1);
}

TEST_F(EffectTreeTest, FiltersActInTheirOrderAndOnlyWhileListed) {
  const ColorMatrix matrix = {0, 1, 0, 0, 0.25f, 1, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 1, 0};
  auto filters = layer("backdrop")->filters();
  filters.push_back({"mixerGain", "colorMatrix", matrix});
  layer("backdrop")->setFilters(filters);
  EXPECT_EQ(tree->look().matrix, chained(saturationMatrix(1.8), matrix));
  layer("backdrop")->setFilters({{"mixerGain", "colorMatrix", matrix}});
  EXPECT_EQ(tree->look().matrix, matrix);
  EXPECT_EQ(tree->look().blurRadius, 0);
}

TEST_F(EffectTreeTest, LayersMayOutliveIt) {
  const auto fill = layer("fill");
  tree.reset();
  fill->setValue(0.5, "opacity");
  EXPECT_EQ(changes, 0);
}

TEST(ColorMatrixTest, ChainsAndSaturates) {
  // Grey stays as it is however vivid, and everything becomes grey at 0.
  for (const double amount : {0.0, 1.0, 1.7}) {
    const ColorMatrix m = saturationMatrix(amount);
    for (std::size_t row = 0; row < 3; ++row) {
      EXPECT_NEAR(m[5 * row] + m[5 * row + 1] + m[5 * row + 2], 1, 1e-6);
    }
  }
  EXPECT_EQ(saturationMatrix(1), identityMatrix);
  EXPECT_EQ(saturationMatrix(nan), identityMatrix);
  const ColorMatrix dim = {0.5f, 0, 0, 0, 0.1f, 0, 0.5f, 0, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, 0, 1, 0};
  const ColorMatrix swap = {0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0.5f};
  EXPECT_THAT(chained(dim, swap),
              Pointwise(FloatNear(1e-6f), ColorMatrix{0, 0.5f, 0,    0, 0, 0.5f, 0, 0, 0, 0.1f,
                                                      0, 0,    0.5f, 0, 0, 0,    0, 0, 1, 0.5f}));
}

TEST(GlassLookTest, EveryMaterialIsDarkOrLightAsAsked) {
  for (int number = -1; number < 25; ++number) {
    const Material dark = material(number, true);
    const Material light = material(number, false);
    EXPECT_LT(dark.fill.green, 0.3);
    EXPECT_GT(light.fill.green, 0.8);
    for (const Material& m : {dark, light}) {
      EXPECT_EQ(m.opaque.alpha, 1);
      EXPECT_GT(m.translucent.alpha, 0.6);
      EXPECT_LT(m.translucent.alpha, 1);
    }
  }
}

}  // namespace
}  // namespace plemora
