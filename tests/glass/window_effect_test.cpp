#include <gmock/gmock.h>

#include <array>

#include "adapters/stage/virtual_main_queue.h"
#include "glass/gaussian_blur.h"
#include "glass/glass_view.h"
#include "pictures.h"
#include "skin/look/tuned_backdrop_view.h"

namespace plemora {
namespace {

/// Bare glass: no blur, no fill, no tint.
constexpr TunedBackdropView::Tuning clear{
    .blurRadius = 0, .saturation = 1, .fillOpacity = 0, .toneOpacity = 0, .hideDesktopTint = true};

/// red from green, green from red, blue as it was and half as bright.
constexpr std::array<float, 20> swapped = {0, 1, 0,    0, 0, 1, 0, 0, 0, 0,
                                           0, 0, 0.5F, 0, 0, 0, 0, 0, 1, 0};

std::shared_ptr<Layer> shape(std::vector<RoundedRect> path) {
  auto layer = std::make_shared<Layer>();
  layer->frame = {0, 0, 60, 40};
  layer->content = ShapeContent{.path = std::move(path), .isEvenOdd = true, .fill = Color::white()};
  return layer;
}

class WindowEffectTest : public testing::Test {
 protected:
  struct Effect {
    std::shared_ptr<EffectView> view;
    std::unique_ptr<TunedBackdropView> tuned;
  };

  WindowEffectTest() {
    view.setSize({60, 40});
    view.setBackdropKind(BackdropSource::Kind::pixels);
    background = tuned(view.showEffect(TunedBackdropView::effect(0)), clear);
    view.setInWindow(true);
    desktop = rasterOf(60, 40, randomPixels(60 * 40, 3, true));
    BackdropImage image{60, 40, 1, {}};
    image.pixels.assign(desktop.pixels().begin(), desktop.pixels().end());
    view.setBackdrop(std::move(image), {0, 0, 60, 40});
  }

  Effect tuned(std::shared_ptr<EffectView> effect, const TunedBackdropView::Tuning& tuning) {
    Effect result{effect, std::make_unique<TunedBackdropView>(effect, queue)};
    result.tuned->setTuning(tuning);
    queue.drain();
    return result;
  }

  Effect add(const TunedBackdropView::Tuning& tuning, std::shared_ptr<Layer> mask = nullptr) {
    Effect effect = tuned(view.addEffect({.blendingMode = 1}), tuning);
    effect.view->setMask(std::move(mask));
    return effect;
  }

  static TunedBackdropView::Tuning blur(double radius) {
    auto tuning = clear;
    tuning.blurRadius = radius;
    return tuning;
  }
  static TunedBackdropView::Tuning swap() {
    auto tuning = clear;
    tuning.matrix = swapped;
    return tuning;
  }
  static Pixel swappedPixel(Pixel pixel) {
    return 0xff000000 | (pixel >> 8 & 0xff) << 16 | (pixel >> 16 & 0xff) << 8 |
           ((pixel & 0xff) + 1) / 2;
  }

  VirtualClock clock;
  VirtualMainQueue queue{clock};
  GlassView view{queue};
  Effect background;
  Raster desktop;
};

TEST_F(WindowEffectTest, BlursWhatIsBelowWhereItsMaskShowsIt) {
  const auto effect = add(blur(3), shape({{{20, 10, 25, 15}}}));
  Raster blurred = desktop;
  GaussianBlur(3).apply(blurred);
  const Raster& picture = view.render();
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 60; ++x) {
      const bool isInside = x >= 20 && x < 45 && y >= 10 && y < 25;
      ASSERT_LE(difference(picture.at(x, y), isInside ? blurred.at(x, y) : desktop.at(x, y)),
                isInside ? 1 : 0)
          << x << ", " << y;
    }
  }
}

TEST_F(WindowEffectTest, MasksOfEveryKindLetThroughAsMuchAsTheyAreOpaque) {
  const auto half = shape({{{10, 10, 20, 20}}});
  half->opacity = 0.5;
  const auto soft = shape({{{10, -40, 100, 120}}});
  soft->featherRadius = 3;
  const auto image = std::make_shared<Layer>();
  image->frame = {10, 10, 40, 20};
  image->content =
      ImageContent{2, 1,
                   std::make_shared<std::vector<unsigned char>>(
                       std::vector<unsigned char>{255, 255, 255, 255, 255, 255, 255, 0})};
  struct Case {
    const char* name;
    std::shared_ptr<Layer> mask;
    Point place;
    double share;  // of the effect
    double tolerance = 0.01;
  };
  for (const Case& c : std::vector<Case>{
           {"none", nullptr, {0, 39}, 1},
           {"half", half, {15, 15}, 0.5},
           {"half", half, {5, 15}, 0},
           {"ring", shape({{{10, 10, 30, 20}}, {{20, 15, 10, 10}}}), {12, 20}, 1},
           {"ring", shape({{{10, 10, 30, 20}}, {{20, 15, 10, 10}}}), {25, 20}, 0},
           {"soft", soft, {10, 20}, 0.55, 0.06},
           {"soft", soft, {2, 20}, 0, 0.02},
           {"soft", soft, {20, 20}, 1, 0.02},
           {"image", image, {15, 20}, 1, 0.02},
           {"image", image, {47, 20}, 0, 0.02},
           {"empty", std::make_shared<Layer>(), {15, 20}, 0},
       }) {
    const auto effect = add(swap(), c.mask);
    const auto x = static_cast<int>(c.place.x);
    const auto y = static_cast<int>(c.place.y);
    const Pixel before = desktop.at(x, y);
    const Pixel after = swappedPixel(before);
    const Pixel seen = view.render().at(x, y);
    for (int shift = 0; shift < 24; shift += 8) {
      const double expected =
          component(before, shift) * (1 - c.share) + component(after, shift) * c.share;
      EXPECT_NEAR(component(seen, shift), expected, 255 * c.tolerance) << c.name << c.place.x;
    }
    background = tuned(view.showEffect(TunedBackdropView::effect(0)), clear);  // ends the effect
  }
}

TEST_F(WindowEffectTest, EachSeesTheOnesBelowIt) {
  const auto first = add(swap(), shape({{{0, 0, 30, 40}}}));
  const auto second = add(swap(), shape({{{20, 0, 40, 40}}}));
  auto half = desktop.at(25, 20);
  for (int i = 0; i < 2; ++i) {
    half = swappedPixel(half);
  }
  const Raster& picture = view.render();
  EXPECT_LE(difference(picture.at(25, 20), half), 1);
  EXPECT_LE(difference(picture.at(10, 20), swappedPixel(desktop.at(10, 20))), 1);
  EXPECT_LE(difference(picture.at(50, 20), swappedPixel(desktop.at(50, 20))), 1);
}

TEST_F(WindowEffectTest, OnlyWhatIsBelowCostsABlur) {
  background.tuned->setTuning(blur(2));
  const auto first = add(blur(3), shape({{{5, 5, 20, 20}}}));
  const auto second = add(blur(4), shape({{{15, 5, 20, 20}}}));
  const auto layer = std::make_shared<Layer>();
  queue.drain();
  view.render();
  struct Case {
    const char* name;
    std::function<void()> change;
    int blurs;        // of the background
    int effectBlurs;  // of the effects
  };
  const auto fade = [&](const Effect& effect, double opacity) {
    auto mask = shape({{{&effect == &first ? 5.0 : 15.0, 5, 20, 20}}});
    mask->opacity = opacity;
    effect.view->setMask(mask);
  };
  for (const Case& c : std::vector<Case>{
           {"nothing", [] {}, 0, 0},
           {"a layer", [&] { view.setLayer(layer); }, 0, 0},
           {"its opacity", [&] { layer->opacity = 0.3, view.setLayer(layer); }, 0, 0},
           {"the upper mask's opacity", [&] { fade(second, 0.5); }, 0, 0},
           {"the lower mask's opacity", [&] { fade(first, 0.5); }, 0, 1},
           {"the upper blur", [&] { second.tuned->setTuning(blur(5)); }, 0, 1},
           {"the background's colours",
            [&] {
              auto tuning = blur(2);
              tuning.saturation = 2;
              background.tuned->setTuning(tuning);
            },
            0, 2},
           {"the backdrop",
            [&] {
              view.setBackdrop({1, 1, 1, {0xff204060}}, {0, 0, 60, 40});
            },
            1, 2},
       }) {
    const int blurs = view.blurCount();
    const int effectBlurs = view.effectBlurCount();
    c.change();
    queue.drain();
    view.render();
    EXPECT_EQ(view.blurCount() - blurs, c.blurs) << c.name;
    EXPECT_EQ(view.effectBlurCount() - effectBlurs, c.effectBlurs) << c.name;
  }
}

TEST_F(WindowEffectTest, TheContainerHoldsAndClipsAllOfIt) {
  const Raster whole = view.render();
  const auto effect = add(swap(), shape({{{0, 0, 5, 40}}}));
  auto layer = std::make_shared<Layer>();
  layer->frame = {10, 5, 2, 2};
  layer->backgroundColor = Color{1, 0, 0};
  view.setLayer(layer);
  view.setContainer({20, 10, 30, 20}, 8);
  const Raster& picture = view.render();
  EXPECT_EQ(picture.width(), 60);
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 60; ++x) {
      if (x < 20 || x >= 50 || y < 10 || y >= 30) {
        ASSERT_EQ(picture.at(x, y), 0U) << x << ", " << y;
      }
    }
  }
  EXPECT_EQ(picture.at(20, 10), 0U) << "its corners are round";
  EXPECT_EQ(picture.at(40, 20), whole.at(40, 20)) << "what is behind stays in its place";
  EXPECT_LE(difference(picture.at(21, 20), swappedPixel(whole.at(21, 20))), 1);
  EXPECT_EQ(picture.at(31, 16), 0xffff0000);
  EXPECT_EQ(effect.view->bounds(), (Rect{0, 0, 30, 20}));
  EXPECT_EQ(background.view->bounds(), (Rect{0, 0, 30, 20}));
}

TEST_F(WindowEffectTest, AGrowingContainerCostsNoBlur) {
  background.tuned->setTuning(blur(2));
  queue.drain();
  view.setContainer({20, 10, 10, 10}, 4);
  view.render();
  const int blurs = view.blurCount();
  for (int i = 1; i <= 20; ++i) {
    view.setContainer({20.0 - i, 10 - i / 2.0, 10.0 + 2 * i, 10.0 + i}, 4 + i / 10.0);
    queue.drain();
    EXPECT_GT(component(view.render().at(25, 14), 24), 250);
  }
  EXPECT_EQ(view.blurCount(), blurs);
}

TEST_F(WindowEffectTest, NeedsPixelsAndItsBackground) {
  const auto effect = add(swap());
  view.setBackdropKind(BackdropSource::Kind::compositor);
  const Raster tint = view.render();
  background = tuned(view.showEffect(TunedBackdropView::effect(0)), clear);
  EXPECT_EQ(view.render(), tint);
  view.setBackdropKind(BackdropSource::Kind::pixels);
  EXPECT_EQ(view.render(), desktop) << "it went with the background before";
  effect.view->setMask(nullptr);
  effect.tuned->setTuning(blur(3));
  queue.drain();
  EXPECT_EQ(view.render(), desktop);
  EXPECT_EQ(view.effectBlurCount(), 0);
}

}  // namespace
}  // namespace plemora
