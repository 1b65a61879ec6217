#include <gmock/gmock.h>

#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_system_info.h"
#include "skin/look/control_center_look.h"
#include "skin/module_drawing.h"
#include "skin/skin_state.h"
#include "views/module_scene.h"
#include "views/qt_warnings.h"

namespace plemora {
namespace {

constexpr double wide = 308;
constexpr double narrow = 148;

ModuleDrawing drawingOf(const ModuleDrawing::Conditions& conditions,
                        const SystemVersion& version = {26, 4, 0}, const char* look = "") {
  MemoryDefaults defaults;
  if (*look != '\0') {
    defaults.setString("look", look);
  }
  ScriptedSystemInfo system;
  system.systemVersion = version;
  ScriptedAppearance appearance(conditions.isDark);
  return ModuleDrawing::of(conditions, ControlCenterLook(defaults, system, appearance));
}

TEST(ModuleDrawingTest, EverythingHasItsPlace) {
  struct Case {
    const char* name;
    ModuleDrawing::Conditions conditions;
    Rect track;
    const char* output;
    std::optional<Point> loudness;
    std::optional<Rect> button;
  };
  for (const Case& c : std::vector<Case>{
           {"wide",
            {.width = wide, .isWide = true},
            {34, 40, 197, 4},
            "speaker.fill",
            Point{248, 42},
            Rect{268, 29, 26, 26}},
           {"wide, headphones",
            {.width = wide, .isWide = true, .isHeadphones = true},
            {37, 40, 222, 4},
            "headphones",
            {},
            Rect{268, 29, 26, 26}},
           {"narrow", {.width = narrow}, {34, 40, 98, 4}, "speaker.fill", {}, {}},
           {"narrow, headphones",
            {.width = narrow, .isHeadphones = true},
            {37, 40, 95, 4},
            "headphones",
            {},
            {}},
           {"too narrow", {.width = 30}, {34, 40, 20, 4}, "speaker.fill", {}, {}},
       }) {
    const ModuleDrawing drawing = drawingOf(c.conditions);
    EXPECT_EQ(drawing.track, c.track) << c.name;
    EXPECT_EQ(drawing.output.name, c.output) << c.name;
    EXPECT_EQ(drawing.output.center.y, 42) << c.name;
    EXPECT_LT(drawing.output.center.x + 10, c.track.minX()) << c.name;
    ASSERT_EQ(drawing.loudness.has_value(), c.loudness.has_value()) << c.name;
    if (c.loudness) {
      EXPECT_EQ(drawing.loudness->center, *c.loudness) << c.name;
    }
    EXPECT_EQ(drawing.button, c.button) << c.name;
  }
}

TEST(ModuleDrawingTest, ColoursFollowReleaseAndAppearance) {
  struct Case {
    SystemVersion version;
    bool isDark;
    const char* look;
    Color track;
    double titleSize;
  };
  for (const Case& c : std::vector<Case>{
           {{26, 1, 0}, true, "", Color::black(0.35), 13},
           {{26, 1, 0}, false, "", Color::black(0.12), 13},
           {{26, 4, 0}, true, "", Color::white(0.14), 12.4},
           {{26, 4, 0}, false, "", Color::black(0.12), 12.4},
           {{27, 0, 0}, true, "", Color::white(0.083), 12.4},
           {{27, 0, 0}, true, "track=0.3", Color::white(0.3), 12.4},
           {{26, 1, 0}, true, "track=0.3", Color::black(0.35), 13},
           {{27, 0, 0}, false, "track=0.3", Color::black(0.12), 12.4},
       }) {
    const auto drawing = drawingOf({.width = wide, .isDark = c.isDark}, c.version, c.look);
    const std::string name = std::to_string(c.version.minor) + (c.isDark ? " dark" : " light");
    EXPECT_EQ(drawing.trackColor, c.track) << name;
    EXPECT_EQ(drawing.titleSize, c.titleSize) << name;
    EXPECT_EQ(drawing.foreground, c.isDark ? Color::white() : Color::black(0.85)) << name;
    EXPECT_EQ(drawing.fillColor, c.isDark ? Color::white() : Color::black(0.7)) << name;
    EXPECT_DOUBLE_EQ(drawing.chevron.color.alpha, c.isDark ? 0.75 : 0.85 * 0.75) << name;
  }
  const auto button = [](bool isDark, bool isHovering) {
    return drawingOf({.width = wide, .isWide = true, .isHovering = isHovering, .isDark = isDark})
        .buttonColor.alpha;
  };
  EXPECT_DOUBLE_EQ(button(true, false), 0.22);
  EXPECT_DOUBLE_EQ(button(true, true), 0.26);
  EXPECT_DOUBLE_EQ(button(false, false), 0.85 * 0.08);
  EXPECT_DOUBLE_EQ(button(false, true), 0.85 * 0.08);
  EXPECT_EQ(drawingOf({.hasVolume = false}).fillOpacity, 0.4);
}

TEST(ModuleDrawingTest, FillAndKnobStayOnTheTrack) {
  const auto drawing = drawingOf({.width = 34 + 100 + 16});
  struct Case {
    double volume;
    double fill;
    double knob;
  };
  for (const Case& c : std::vector<Case>{
           {0, 4, 0}, {0.03, 4, 0}, {0.5, 50, 40}, {1, 100, 90}, {-1, 4, 0}, {7, 100, 90}}) {
    EXPECT_DOUBLE_EQ(drawing.fillWidth(c.volume), c.fill) << c.volume;
    EXPECT_DOUBLE_EQ(drawing.knobOffset(c.volume), c.knob) << c.volume;
  }
}

/// The real view in an offscreen window. Warnings of Qt fail the test.
class ModuleViewTest : public testing::Test {
 protected:
  void SetUp() override { QtWarnings::take(); }
  void TearDown() override {
    window.reset();
    EXPECT_EQ(QtWarnings::take(), std::vector<std::string>{});
  }

  QImage picture(double width) {
    if (!window) {
      window = std::make_unique<QQuickWindow>();
      window->setColor(Qt::gray);
      scene.item()->setParentItem(window->contentItem());
      window->show();
    }
    window->setGeometry(0, 0, static_cast<int>(width), 64);
    scene.item()->setSize(QSizeF(width, ModuleScene::height));
    QTest::qWait(0);
    window->grabWindow();  // what is made while others are laid out shows in the next
    return window->grabWindow();
  }

  /// Whether anything in it differs from the grey around.
  static bool isMarked(const QImage& picture, const QRect& area) {
    for (int y = area.top(); y <= area.bottom(); ++y) {
      for (int x = area.left(); x <= area.right(); ++x) {
        if (picture.pixelColor(x, y) != QColor(Qt::gray)) {
          return true;
        }
      }
    }
    return false;
  }

  MemoryDefaults defaults;
  ScriptedSystemInfo system;
  ScriptedAppearance appearance;
  ControlCenterLook look{defaults, system, appearance};
  SkinState state;
  ModuleScene scene{state, look, appearance};
  std::unique_ptr<QQuickWindow> window;
};

TEST_F(ModuleViewTest, ShowsTheStateAsItComes) {
  state.isWide.set(true);
  state.volume.set(0.5F);
  QImage now = picture(wide);
  EXPECT_TRUE(isMarked(now, {16, 12, 38, 13})) << "title";
  EXPECT_TRUE(isMarked(now, {58, 12, 8, 13})) << "chevron";
  EXPECT_TRUE(isMarked(now, {16, 35, 12, 14})) << "output";
  EXPECT_TRUE(isMarked(now, {240, 35, 18, 14})) << "loudness";
  EXPECT_EQ(now.pixelColor(60, 42), QColor(Qt::white)) << "fill";
  const QColor groove = now.pixelColor(200, 42);
  EXPECT_NE(groove, QColor(Qt::gray));
  EXPECT_NE(groove, QColor(Qt::white));
  EXPECT_EQ(now.pixelColor(132, 37), QColor(Qt::white)) << "the knob is in the middle of it";
  EXPECT_FALSE(isMarked(now, {70, 2, 220, 24}));

  state.volume.set(1);
  now = picture(wide);
  EXPECT_EQ(now.pixelColor(200, 42), QColor(Qt::white));
  EXPECT_EQ(now.pixelColor(231, 37), QColor(Qt::white));

  state.hasVolume.set(false);
  EXPECT_NE(picture(wide).pixelColor(60, 42), QColor(Qt::white));

  state.isHeadphones.set(true);
  now = picture(wide);
  EXPECT_EQ(now.pixelColor(35, 42), QColor(Qt::gray)) << "the track begins further right";
  EXPECT_NE(now.pixelColor(242, 42), QColor(Qt::gray)) << "and is longer";

  const QColor rest = now.pixelColor(275, 36);
  state.isHovering.set(true);
  EXPECT_GT(picture(wide).pixelColor(275, 36).lightness(), rest.lightness());

  state.isWide.set(false);
  state.volume.set(0);
  now = picture(narrow);
  EXPECT_TRUE(isMarked(now, {120, 40, 12, 4}));
  EXPECT_FALSE(isMarked(now, {134, 2, 14, 60})) << "nothing to the right of the track";
}

TEST_F(ModuleViewTest, FollowsTheAppearance) {
  state.volume.set(0.5F);
  const QImage dark = picture(narrow);
  appearance.setDark(false);
  const QImage light = picture(narrow);
  const auto inkOf = [](const QImage& image) { return image.pixelColor(60, 42).lightness(); };
  EXPECT_GT(inkOf(dark), 240);
  EXPECT_LT(inkOf(light), 90);
  EXPECT_EQ(light.pixelColor(83, 37), QColor(Qt::white)) << "the knob is white on both";
}

TEST_F(ModuleViewTest, KnowsItsHeightBeforeItIsBuilt) {
  state.volume.set(0.2F);
  state.isWide.set(true);
  EXPECT_EQ(scene.fittingHeight(), 64);
  EXPECT_EQ(picture(wide).pixelColor(45, 42), QColor(Qt::white)) << "and knows then what was set";
}

}  // namespace
}  // namespace plemora
