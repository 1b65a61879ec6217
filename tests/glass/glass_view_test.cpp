#include "glass/glass_view.h"

#include <gmock/gmock.h>

#include <limits>

#include "adapters/stage/virtual_main_queue.h"
#include "glass/color_matrix.h"
#include "glass/gaussian_blur.h"
#include "pictures.h"
#include "skin/look/rim_layer.h"
#include "skin/look/tuned_backdrop_view.h"

namespace plemora {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// Bare glass: no blur, no fill, no tint.
const TunedBackdropView::Tuning clear{
    .blurRadius = 0, .saturation = 1, .fillOpacity = 0, .toneOpacity = 0, .hideDesktopTint = true};

class GlassViewTest : public testing::Test {
 protected:
  GlassViewTest() {
    view.setSize({40, 30});
    view.setBackdropKind(BackdropSource::Kind::pixels);
    view.setChangeHandler([this] { ++changes; });
  }

  void tune(const TunedBackdropView::Tuning& tuning, double cornerRadius = 0) {
    if (!tuned) {
      tuned = std::make_unique<TunedBackdropView>(
          view.showEffect(TunedBackdropView::effect(cornerRadius)), queue);
      view.setInWindow(true);
    }
    tuned->setTuning(tuning);
  }

  /// Shows a desktop of that many points, which the view lies on at (x, y).
  void setDesktop(const Raster& desktop, double scale, double x, double y) {
    BackdropImage image{desktop.width(), desktop.height(), scale, {}};
    image.pixels.assign(desktop.pixels().begin(), desktop.pixels().end());
    view.setBackdrop(std::move(image), {-x, -y, desktop.width() / scale, desktop.height() / scale});
  }

  VirtualClock clock;
  VirtualMainQueue queue{clock};
  GlassView view{queue};
  std::unique_ptr<TunedBackdropView> tuned;
  int changes = 0;
};

Raster noise(int width, int height) {
  return rasterOf(width, height, randomPixels(static_cast<std::size_t>(width * height), 3, true));
}

TEST_F(GlassViewTest, ShowsTheBackdropInItsPlaceAtAnyScale) {
  tune(clear);
  for (const double scale : {1.0, 1.5, 2.0}) {
    SCOPED_TRACE(scale);
    const Raster desktop = noise(200, 150);
    view.setScale(scale);
    setDesktop(desktop, scale, 10, 8);
    const Raster& picture = view.render();
    ASSERT_EQ(picture.width(), static_cast<int>(40 * scale));
    ASSERT_EQ(picture.height(), static_cast<int>(30 * scale));
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        ASSERT_EQ(picture.at(x, y),
                  desktop.at(x + static_cast<int>(10 * scale), y + static_cast<int>(8 * scale)));
      }
    }
  }
}

TEST_F(GlassViewTest, EnlargesABackdropOfALowerScale) {
  tune(clear);
  view.setScale(2);
  const Raster desktop = noise(100, 80);
  setDesktop(desktop, 1, 5, 5);
  EXPECT_EQ(view.render().at(21, 13), desktop.at(15, 11));
}

TEST_F(GlassViewTest, DrawsTheSameAgainAfterItForgotItsPixels) {
  tune({});
  const Raster desktop = noise(200, 150);
  setDesktop(desktop, 1, 10, 8);
  const Raster before = view.render();
  view.forgetPixels();
  EXPECT_NE(view.render(), before);  // nothing is known of what lies behind
  setDesktop(desktop, 1, 10, 8);
  EXPECT_EQ(view.render(), before);
}

TEST_F(GlassViewTest, BlursByThePointsAndThenFilters) {
  const ColorMatrix matrix = {0.9f, 0.2f, -0.1f, 0, 0.05f, 0, 0.8f, 0, 0, 0.1f,
                              0.3f, 0,    0.5f,  0, 0,     0, 0,    0, 1, 0};
  TunedBackdropView::Tuning tuning = clear;
  tuning.blurRadius = 2.5;
  tuning.saturation = 1.4;
  tuning.matrix = matrix;
  tuning.margin = 20;
  const ColorMatrix both = chained(saturationMatrix(1.4), matrix);
  for (const double scale : {1.0, 2.0}) {
    tune(tuning);
    view.setScale(scale);
    const Raster desktop = noise(static_cast<int>(80 * scale), static_cast<int>(70 * scale));
    setDesktop(desktop, scale, 20, 20);
    const Raster& picture = view.render();
    Raster blurred = desktop;
    GaussianBlur(2.5 * scale).apply(blurred);
    const int left = static_cast<int>(20 * scale);
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        const Pixel below = blurred.at(left + x, left + y);
        for (int c = 0; c < 3; ++c) {
          const float* row = both.data() + 5 * c;
          double value = 255.0 * row[4];
          for (int i = 0; i < 3; ++i) {
            value += static_cast<double>(row[i]) * component(below, 16 - 8 * i);
          }
          ASSERT_NEAR(component(picture.at(x, y), 16 - 8 * c), std::clamp(value, 0.0, 255.0), 3);
        }
        ASSERT_EQ(component(picture.at(x, y), 24), 255);
      }
    }
  }
}

TEST_F(GlassViewTest, LooksAsFarBeyondItsBoundsAsTheMarginSays) {
  // Black below the view, white around it.
  Raster desktop(100, 100);
  desktop.fill(0xffffffff);
  for (int y = 30; y < 60; ++y) {
    std::fill_n(desktop.row(y) + 30, 40, 0xff000000);
  }
  TunedBackdropView::Tuning tuning = clear;
  tuning.blurRadius = 4;
  for (const auto& [margin, edge, capture] :
       {std::tuple{0.0, 0, 0.0}, {1.0, 60, 1.0}, {30.0, 127, 15.0}}) {
    SCOPED_TRACE(margin);
    tuning.margin = margin;
    tune(tuning);
    setDesktop(desktop, 1, 30, 30);
    EXPECT_LE(view.backdropMargin(), std::max(capture, 0.0));
    EXPECT_GE(view.backdropMargin(), std::min(capture, 10.0));
    const Raster& picture = view.render();
    EXPECT_NEAR(component(picture.at(0, 15), 8), edge, margin == 1 ? 55 : 16);
    EXPECT_LE(component(picture.at(20, 15), 8), 2);
  }
}

TEST_F(GlassViewTest, BlursAgainOnlyForWhatChangesTheBlur) {
  TunedBackdropView::Tuning tuning = clear;
  tuning.blurRadius = 3;
  tune(tuning);
  setDesktop(noise(80, 60), 1, 10, 10);
  view.render();
  EXPECT_EQ(view.blurCount(), 1);
  RimLayer rim(0.56, 0.18);
  rim.update({40, 30}, 10, true, 1);

  const std::pair<const char*, std::function<void()>> cheap[] = {
      {"nothing", [] {}},
      {"top layer", [&] { view.setLayer(rim.layer()); }},
      {"saturation",
       [&] {
         tuning.saturation = 1.5;
         tune(tuning);
       }},
      {"fill",
       [&] {
         tuning.fillOpacity = 0.5;
         tune(tuning);
       }},
      {"matrix",
       [&] {
         tuning.gain = 0.8;
         tune(tuning);
       }},
      {"overlay",
       [&] {
         tuning.overlay = {1, 0.2};
         tune(tuning);
       }},
  };
  for (const auto& [name, change] : cheap) {
    const Raster before = view.render();
    change();
    const bool isSame = view.render() == before;
    EXPECT_EQ(isSame, std::string(name) == "nothing") << name;
    EXPECT_EQ(view.blurCount(), 1) << name;
  }
  const std::pair<const char*, std::function<void()>> dear[] = {
      {"radius",
       [&] {
         tuning.blurRadius = 4;
         tune(tuning);
       }},
      {"backdrop", [&] { setDesktop(noise(80, 60), 1, 12, 10); }},
      {"size",
       [&] {
         view.setSize({40, 31});
       }},
      {"scale", [&] { view.setScale(2); }},
  };
  for (const auto& [name, change] : dear) {
    const int before = view.blurCount();
    change();
    view.render();
    EXPECT_EQ(view.blurCount(), before + 1) << name;
  }
}

TEST_F(GlassViewTest, IsATintWithoutPixels) {
  tune(clear);
  const auto alphaInTheMiddle = [&] { return component(view.render().at(20, 15), 24); };
  // No capture yet, and one that failed.
  EXPECT_EQ(alphaInTheMiddle(), 255);
  view.setBackdrop({}, {});
  EXPECT_EQ(alphaInTheMiddle(), 255);
  BackdropImage lies{100, 100, 1, {1, 2, 3}};
  view.setBackdrop(lies, {0, 0, 100, 100});
  EXPECT_EQ(alphaInTheMiddle(), 255);
  view.setBackdropKind(BackdropSource::Kind::none);
  EXPECT_EQ(alphaInTheMiddle(), 255);
  view.setBackdropKind(BackdropSource::Kind::compositor);
  const int translucent = alphaInTheMiddle();
  EXPECT_GT(translucent, 150);
  EXPECT_LT(translucent, 230);
  const int dark = component(view.render().at(20, 15), 8);
  view.setDark(false);
  EXPECT_GT(component(view.render().at(20, 15), 8), dark + 100);
}

TEST_F(GlassViewTest, DarkGlassDimsABrightDesktopAndLightGlassLightensADarkOne) {
  for (const bool isDark : {true, false}) {
    view.setDark(isDark);
    Raster desktop(60, 60);
    desktop.fill(isDark ? 0xffffffff : 0xff000000);
    setDesktop(desktop, 1, 10, 10);
    TunedBackdropView::Tuning tuning = clear;
    tune(tuning);
    const int untinted = component(view.render().at(20, 15), 8);
    tuning.hideDesktopTint = false;
    tune(tuning);
    const int tinted = component(view.render().at(20, 15), 8);
    EXPECT_GT(isDark ? untinted - tinted : tinted - untinted, 60);
  }
}

TEST_F(GlassViewTest, RoundsItsCornersAndLaysTheTopLayerOverThem) {
  tune(clear, 12);
  Raster desktop(60, 60);
  desktop.fill(0xff0000ff);
  setDesktop(desktop, 1, 10, 10);
  EXPECT_EQ(view.render().at(0, 0), 0U);
  EXPECT_EQ(view.render().at(39, 29), 0U);
  EXPECT_EQ(view.render().at(20, 0), 0xff0000ff);
  auto top = std::make_shared<Layer>();
  top->frame = {0, 0, 4, 4};
  top->backgroundColor = Color::white();
  view.setLayer(top);
  EXPECT_EQ(view.render().at(0, 0), 0xffffffff);
  view.setLayer(nullptr);
  EXPECT_EQ(view.render().at(0, 0), 0U);
  view.clearBackground();
  EXPECT_EQ(view.render().at(20, 15), 0U);
}

TEST_F(GlassViewTest, TheOverlayLiesOnTheEffectInsideTheCorners) {
  TunedBackdropView::Tuning tuning = clear;
  tuning.overlay = {1, 0.5};
  tune(tuning, 12);
  Raster desktop(60, 60);
  desktop.fill(0xff000000);
  setDesktop(desktop, 1, 10, 10);
  EXPECT_LE(difference(view.render().at(20, 15), 0xff808080), 1);
  EXPECT_EQ(view.render().at(0, 0), 0U);
  view.setSize({60, 45});  // and grows with it
  EXPECT_LE(difference(view.render().at(50, 40), 0xff808080), 1);
}

TEST_F(GlassViewTest, ANewAppearanceMakesNewLayersWhichAreTunedAgain) {
  TunedBackdropView::Tuning tuning = clear;
  tuning.gain = 0.5;
  tune(tuning);
  Raster desktop(60, 60);
  desktop.fill(0xff804020);
  setDesktop(desktop, 1, 10, 10);
  EXPECT_LE(difference(view.render().at(20, 15), 0xff402010), 1);
  view.setDark(false);
  EXPECT_LE(difference(view.render().at(20, 15), 0xff402010), 1);
}

TEST_F(GlassViewTest, TellsOncePerTurnThatItChanged) {
  queue.drain();
  changes = 0;
  view.render();
  view.setScale(2);
  view.setLayer(std::make_shared<Layer>());
  queue.drain();
  EXPECT_EQ(changes, 1);
  // What has been rendered since needs no telling.
  view.setScale(1);
  view.render();
  queue.drain();
  EXPECT_EQ(changes, 1);
  view.setScale(1);
  view.setSize({40, 30});
  view.setDark(true);
  EXPECT_EQ(queue.drain(), 0);
}

TEST_F(GlassViewTest, SystemGlassTakesItsOptions) {
  const auto glass = view.showSystemGlass();
  Raster desktop(60, 60);
  desktop.fill(0xff808080);
  setDesktop(desktop, 1, 10, 10);
  glass->setCornerRadius(10);
  const Pixel plain = view.render().at(20, 15);
  EXPECT_EQ(view.render().at(0, 0), 0U);
  EXPECT_EQ(component(plain, 24), 255);
  glass->setStyle(1);
  const Pixel clearer = view.render().at(20, 15);
  EXPECT_GT(component(clearer, 8), component(plain, 8));
  glass->setTintColor({1, 0.5, 0, 1});
  const Pixel tinted = view.render().at(20, 15);
  EXPECT_GT(component(tinted, 16), component(tinted, 0) + 60);
  EXPECT_TRUE(glass->respondsTo("set_scrimState:"));
  EXPECT_FALSE(glass->respondsTo("set_variant:"));
  glass->setValue(1, "scrimState");
  EXPECT_NE(view.render().at(20, 15), tinted);
}

TEST_F(GlassViewTest, EffectsMayOutliveTheView) {
  std::shared_ptr<EffectView> effect;
  std::shared_ptr<SystemGlassView> glass;
  {
    GlassView other(queue);
    glass = other.showSystemGlass();
    effect = other.showEffect({});
    effect->setNeedsLayout();
  }
  effect->setNeedsLayout();
  effect->setOverlay(std::make_shared<Layer>(), 1);
  glass->setStyle(1);
  queue.drain();
  effect->layer()->setValue(3, "opacity");
}

TEST_F(GlassViewTest, NothingBreaksOnNonsense) {
  const double odd[] = {nan, infinity, -infinity, -5, 0, 0.3, 1, 1e12};
  TunedBackdropView::Tuning tuning;
  for (const double value : odd) {
    SCOPED_TRACE(value);
    tuning.blurRadius = tuning.saturation = tuning.gain = value;
    tuning.fillOpacity = tuning.toneOpacity = static_cast<float>(value);
    tuning.margin = value;
    tuning.overlay = {value, value};
    view.showEffect(TunedBackdropView::effect(value));
    tuned.reset();
    tune(tuning, value);
    for (const Size size : {Size{40, 30}, Size{value < 1e3 ? value : 3, 2}, Size{1, 1}}) {
      view.setSize(size);
      view.setScale(value);
      setDesktop(noise(5, 4), 1, 1, 1);
      view.render();
      view.setBackdrop({5, 4, value, std::vector<unsigned>(20, 0xff112233)},
                       {value, value, value, 0});
      view.render();
      view.setBackdrop({5, 4, 1, std::vector<unsigned>(20, 0xff112233)}, {0, 0, value, value});
      const Raster& picture = view.render();
      EXPECT_LE(picture.width(), 700);
      EXPECT_GE(view.backdropMargin(), 0);
    }
  }
}

}  // namespace
}  // namespace plemora
