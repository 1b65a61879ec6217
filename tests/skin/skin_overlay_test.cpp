#include "skin/skin_overlay.h"

#include <gtest/gtest.h>

#include "glass/layer_renderer.h"
#include "glass/pixel_kernel.h"
#include "skin/seam_shapes.h"
#include "skin/skin_world.h"

namespace plemora {
namespace {

constexpr const char* identity = "1:0:0:0:0:0:1:0:0:0:0:0:1:0:0:0:0:0:1:0";
const std::vector<Rect> pills = {{0, 0, 150, 64}, {166, 0, 150, 64}};

class SkinOverlayTest : public testing::Test, protected SkinWorld {
 protected:
  SkinOverlay& make(const std::string& style, int level = 101) {
    made.reset();
    made = std::make_unique<SkinOverlay>(services(windows), state, makeView(), GlassStyle(style),
                                         level);
    made->setFrame(module);
    made->updateSeam(module.size(), pills);
    return *made;
  }
  const auto& effects() { return overlay().stageSurface().addedEffects; }
  const ScriptedEffectLayer& tuned(std::size_t index) {
    ScriptedEffectView& effect = *effects().at(index);
    effect.layers = ScriptedEffectLayer::systemTree();
    effect.moveToWindow(true);
    main.drain();
    return *effect.layers->find("backdrop");
  }
  double opacity(const std::string& name) { return layer(name)->opacity; }

  SkinState state;
  std::unique_ptr<SkinOverlay> made;
};

/// Whether a shape covers a point of the module, as it is drawn.
bool covers(const std::vector<RoundedRect>& path, Point point) {
  Layer layer;
  layer.content =
      ShapeContent{.path = path, .isEvenOdd = true, .fill = Color::white(), .stroke = std::nullopt};
  Raster raster(416, 164);
  LayerRenderer(1).render(layer, raster, {50, 50});
  return alphaOf(raster.row(50 + static_cast<int>(point.y))[50 + static_cast<int>(point.x)]) > 128;
}

TEST(SeamShapesTest, CoversTheGapAndTheFacingCornersAlone) {
  const SeamShapes shapes({316, 64}, pills, 23);
  const struct {
    Point point;
    bool inSeam, inWiderSeam, inCaps;
  } cases[] = {{{158, 32}, true, true, false},   {{158, 2}, true, true, true},
               {{148, 1}, true, true, true},     {{167, 62}, true, true, true},
               {{148, 32}, false, true, false},  {{167, 32}, false, true, false},
               {{145, 32}, false, false, false}, {{1, 1}, false, false, false},
               {{314, 62}, false, false, false}, {{75, 1}, false, false, false},
               {{158, -8}, true, true, true},    {{-8, 32}, false, false, false},
               {{324, 32}, false, false, false}, {{100, 70}, false, false, false}};
  for (const auto& [point, inSeam, inWiderSeam, inCaps] : cases) {
    EXPECT_EQ(covers(shapes.seam(0), point), inSeam) << point.x << " " << point.y;
    EXPECT_EQ(covers(shapes.seam(3), point), inWiderSeam) << point.x << " " << point.y;
    EXPECT_EQ(covers(shapes.caps(0), point), inCaps && point.y != 32) << point.x << " " << point.y;
  }
  EXPECT_EQ(shapes.edges().size(), 2U);
}

TEST(SeamShapesTest, HasNoneWithoutTwoTilesSideBySide) {
  for (const std::vector<Rect>& tiles : {std::vector<Rect>{},
                                         {{0, 0, 316, 64}},
                                         {{0, 0, 150, 64}, {0, 0, 150, 64}},
                                         {{0, 0, 150, 64}, {400, 0, 150, 64}}}) {
    const SeamShapes shapes({316, 64}, tiles, 23);
    EXPECT_TRUE(shapes.seam(3).empty() && shapes.caps(3).empty() && shapes.edges().empty());
  }
  for (const double dilation : {1e300, -1e300}) {
    for (const RoundedRect& part : SeamShapes({316, 64}, pills, 23).caps(dilation)) {
      EXPECT_GE(part.rect.width, 0);
    }
  }
}

TEST_F(SkinOverlayTest, IsAPanelThatNobodyCanTouch) {
  make("cc", SkinOverlay::levelAbove(26));
  const PanelWindowOptions& options = overlay().options;
  EXPECT_EQ(options.level, 101);
  EXPECT_EQ(options.collectionBehavior, 337U);
  EXPECT_EQ(options.animationBehavior, 2);
  EXPECT_TRUE(options.ignoresMouseEvents);
  EXPECT_FALSE(options.hasShadow || options.isOpaque || options.isMovable || options.canBecomeKey);
  EXPECT_EQ(overlay().stageSurface().effect->description().cornerRadius, 23);
  EXPECT_EQ(overlay().stageSurface().content(), view);
  EXPECT_EQ(SkinOverlay::levelAbove(101), 102);
  EXPECT_EQ(SkinOverlay::levelAbove(std::numeric_limits<int>::max()),
            std::numeric_limits<int>::max());
  defaults.setBoolean("debugBareSkin", true);
  make("cc");
  EXPECT_EQ(overlay().stageSurface().content(), nullptr);
}

TEST_F(SkinOverlayTest, TunesEachFamilyThatHasAMatrix) {
  const std::string m = identity;
  make("cc,em=" + m + ",gm=" + m + ",cm=" + m);
  ASSERT_EQ(effects().size(), 3U);
  const struct {
    const char* mask;
    double radius, feather;
  } cases[] = {{"gapFixMask", 6, 4}, {"gapCapsMask", 2, 4}, {"edgeSoftenMask", 5, 3}};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(effects()[i]->description().blendingMode, 1);
    EXPECT_EQ(effects()[i]->mask()->name, cases[i].mask);
    EXPECT_EQ(effects()[i]->mask()->featherRadius, cases[i].feather);
    const auto& values = tuned(i).values;
    EXPECT_EQ(values.at("filters.gaussianBlur.inputRadius"), cases[i].radius);
    EXPECT_EQ(values.at("filters.colorSaturate.inputAmount"), 1);
    EXPECT_EQ(values.at("marginWidth"), 0);
  }
  make("cc,margin=6,gr=1,gf=7,dilate=3,ew=5,er=2,gm=" + m + ",em=" + m);
  ASSERT_EQ(effects().size(), 2U);
  EXPECT_EQ(effects()[0]->mask()->featherRadius, 7);
  EXPECT_EQ(tuned(0).values.at("marginWidth"), 4);
  EXPECT_EQ(tuned(1).values.at("marginWidth"), 6);
  EXPECT_EQ(std::get<ShapeContent>(effects()[1]->mask()->content).lineWidth, 5);
  EXPECT_EQ(std::get<ShapeContent>(effects()[0]->mask()->content).path,
            SeamShapes(module.size(), pills, 23).seam(3 - 7));
  made->updateSeam({150, 64}, {});
  for (const auto& effect : effects()) {
    EXPECT_TRUE(std::get<ShapeContent>(effect->mask()->content).path.empty());
  }
}

TEST_F(SkinOverlayTest, HidesTheSeamAsReleaseAndAppearanceWantIt) {
  const std::string gapFix = std::string(",gm=") + identity;
  const struct {
    int release;  // minor, of 26
    bool isDark;
    std::string style, tuning;
    double seam, lift;
    BlendMode mode;
  } cases[] = {{4, false, ",lift=0.09", "", 0.3, 0, BlendMode::saturation},
               {1, true, ",lift=0.09", "", 0.3, 0.05, BlendMode::saturation},
               {1, true, ",lift=0.09", "seamSat=0.6,seamLift=0.2", 0.6, 0.2, BlendMode::saturation},
               {1, false, ",lift=0.09", "seamSat=0.6", 0.23, 0, BlendMode::normal},
               {1, false, ",lift=0.09,liftLight=0.4", "", 0.4, 0, BlendMode::normal},
               {4, true, ",lift=0.09" + gapFix, "", 0, 0, BlendMode::screen},
               {4, true, "", "", 0, 0, BlendMode::screen}};
  for (const auto& [release, isDark, style, tuning, seam, lift, mode] : cases) {
    system.systemVersion = {26, release, 0};
    appearance.setDark(isDark);
    defaults.setString("look", tuning);
    make("cc" + style);
    EXPECT_EQ(opacity("lift"), style.empty() ? 0 : 0.09);
    EXPECT_EQ(opacity("seamLight"), 0);
    made->tuneSeamForAppearance();
    EXPECT_EQ(opacity("seamLight"), seam) << release << style;
    EXPECT_EQ(opacity("lift"), lift) << release << style;
    EXPECT_EQ(layer("seamLight")->blendMode, mode) << release << style;
  }
}

TEST_F(SkinOverlayTest, DrawsAgainOnlyWhatHasChanged) {
  SkinOverlay& skinOverlay = make("cc,feather=6");
  const int updates = overlay().stageSurface().layerUpdates;
  skinOverlay.setFrame(module);
  skinOverlay.updateSeam(module.size(), pills);
  skinOverlay.animate();
  EXPECT_EQ(overlay().stageSurface().layerUpdates, updates);
  EXPECT_EQ(overlay().frames.size(), 1U);
  EXPECT_EQ(layer("lift")->featherRadius, 6);
  EXPECT_EQ(layer("rim")->zPosition, 10);
  EXPECT_EQ(find(overlay().stageSurface().layer, "inner"), nullptr);
  screens.set({Screen{1, {0, 0, 1440, 900}, {}, 2, 60}});
  skinOverlay.updateSeam(module.size(), pills);
  EXPECT_NE(layer("inner"), nullptr);
}

TEST_F(SkinOverlayTest, LaysTheBubbleSetOverTheGlass) {
  files.makeFolder("/app");
  const std::string set = R"([{"mask":"a","matrix":[0,1,1,1,1,1,0,1,1,1,1,1,0,1,1,1,1,1,0,1]}])";
  files.writeAtomically("/app/27.json", set);
  files.writeAtomically("/app/a.png", "png");
  resources.paths = {{"27.json", "/app/27.json"}, {"a.png", "/app/a.png"}};
  resources.pictures["png"] = {2, 1, std::make_shared<std::vector<unsigned char>>(8)};
  make("cc,bc=27,bcr=0.25,bcx=2");
  const Layer& mask = *effects().at(0)->mask();
  EXPECT_EQ(mask.frame, (Rect{-2, -2, 320, 68}));
  EXPECT_EQ(std::get<ImageContent>(mask.content).width, 2);
  const auto matrix = tuned(0).values;
  EXPECT_EQ(matrix.at("filters.gaussianBlur.inputRadius"), 0);
  auto& backdrop = *effects().at(0)->layers->find("backdrop");
  EXPECT_EQ(backdrop.filters().at(0).inputColorMatrix[0], 0.75F);
  make("cc,bc=26.4,bcr=0.25");
  EXPECT_TRUE(effects().empty());
}

}  // namespace
}  // namespace plemora
