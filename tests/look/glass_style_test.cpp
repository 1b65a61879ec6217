#include "skin/look/glass_style.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "adapters/stage/scripted_hosted_view.h"
#include "adapters/stage/stage_windows.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "skin/look/built_in_styles.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Tuning = TunedBackdropView::Tuning;

std::string numbers(int count, const std::string& separator) {
  std::string text;
  for (int i = 1; i <= count; ++i) {
    text += (i > 1 ? separator : "") + std::to_string(i);
  }
  return text;
}

TEST(GlassStyleTest, AnyTextIsAStyle) {
  const GlassStyle style("cc,r=2,notint,bc=26.1=x,=5,,r=3,empty=");
  EXPECT_TRUE(style.has("cc"));
  EXPECT_EQ(style.value("notint"), "");
  EXPECT_EQ(style.value("bc"), "26.1=x");
  EXPECT_EQ(style.value("r"), "3");
  EXPECT_EQ(style.value("empty"), "");
  EXPECT_EQ(style.value(""), "5");
  EXPECT_EQ(style.value("R"), std::nullopt);
  EXPECT_EQ(style.number("r"), 3);
  EXPECT_EQ(style.number("cc"), std::nullopt);
  EXPECT_EQ(style.number("absent"), std::nullopt);
  EXPECT_EQ(GlassStyle(""), GlassStyle::standard());
  EXPECT_EQ(GlassStyle("a=1,b"), GlassStyle("b,a=1"));
  EXPECT_NE(GlassStyle("a=1"), GlassStyle("a=2"));
}

TEST(GlassStyleTest, MaterialsHaveNames) {
  struct Case {
    std::string style;
    std::optional<int> material;
  };
  for (const Case& each : std::vector<Case>{
           {"", {}},
           {"cc", {}},
           {"vev", 5},
           {"vev=", 5},
           {"vev=glass", 5},
           {"vev=Sheet", 5},
           {"vev=titlebar", 3},
           {"vev=menu", 5},
           {"vev=popover", 6},
           {"vev=sidebar", 7},
           {"vev=headerView", 10},
           {"vev=sheet", 11},
           {"vev=windowBackground", 12},
           {"vev=hudWindow", 13},
           {"vev=fullScreenUI", 15},
           {"vev=toolTip", 17},
           {"vev=contentBackground", 18},
           {"vev=underWindowBackground", 21},
       }) {
    EXPECT_EQ(GlassStyle(each.style).material(), each.material) << each.style;
  }
}

TEST(GlassStyleTest, WhatIsNotSaidOrNotReadableIsAtItsDefault) {
  const Tuning defaults;
  const Tuning expected{.blurRadius = 6.0,
                        .saturation = 1.7,
                        .fillOpacity = 0.25F,
                        .toneOpacity = 0.0F,
                        .gain = 1.0,
                        .hideDesktopTint = false,
                        .overlay = {},
                        .matrix = {},
                        .margin = {}};
  EXPECT_EQ(defaults, expected);
  for (const std::string style :
       {"cc", "cc,r,sat,fill,tone,gain,margin,m,over", "cc,r=,sat=,fill=,tone=,gain=,margin=",
        "cc,r=2px,sat=high,fill=nan,tone=1e99,gain= 1,margin=0x3", "cc,over=1", "cc,over=1/2/3",
        "cc,over=/", "cc,over=a/b", "CC,R=2"}) {
    EXPECT_EQ(GlassStyle(style).tuning(), defaults) << style;
  }
  const Tuning all =
      GlassStyle("cc,r=2.5,sat=1.35,fill=0.5,tone=0.125,gain=1.2,notint,margin=6,over=1/0.2")
          .tuning();
  EXPECT_EQ(all, (Tuning{.blurRadius = 2.5,
                         .saturation = 1.35,
                         .fillOpacity = 0.5F,
                         .toneOpacity = 0.125F,
                         .gain = 1.2,
                         .hideDesktopTint = true,
                         .overlay = TunedBackdropView::Overlay{1, 0.2},
                         .matrix = {},
                         .margin = 6}));
  // A flag counts whatever its value, and pieces that are no numbers are skipped before counting.
  EXPECT_TRUE(GlassStyle("notint=0").tuning().hideDesktopTint);
  EXPECT_EQ(GlassStyle("over=x/0.5/y/0.25").tuning().overlay,
            (TunedBackdropView::Overlay{0.5, 0.25}));
}

TEST(GlassStyleTest, AMatrixHasExactlyTwentyNumbers) {
  EXPECT_EQ(GlassStyle("m=" + numbers(19, ":")).matrix("m"), std::nullopt);
  EXPECT_EQ(GlassStyle("m=" + numbers(21, ":")).matrix("m"), std::nullopt);
  EXPECT_EQ(GlassStyle("m").matrix("m"), std::nullopt);
  EXPECT_EQ(GlassStyle("").matrix("m"), std::nullopt);
  EXPECT_EQ(GlassStyle("m=" + numbers(20, ";")).matrix("m"), std::nullopt);
  ColorMatrix expected{};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    expected[i] = static_cast<float>(i + 1);
  }
  EXPECT_EQ(GlassStyle("gm=" + numbers(20, ":")).matrix("gm"), expected);
  EXPECT_EQ(GlassStyle("m=x::" + numbers(20, ":") + ":nan:").matrix("m"), expected);
}

TEST(GlassStyleTest, TheBuiltInStylesAreReadInFull) {
  for (const BuiltInStyles styles : {builtInSkin, builtInDetail}) {
    for (const auto& [key, text] : styles) {
      const GlassStyle style(text);
      const Tuning tuning = style.tuning();
      EXPECT_TRUE(style.has("cc")) << key;
      ASSERT_TRUE(tuning.matrix) << key;
      EXPECT_EQ((*tuning.matrix)[18], 1) << "alpha is kept: " << key;
      EXPECT_EQ(tuning.fillOpacity, 0) << key;
      EXPECT_EQ(tuning.margin.has_value(), key.starts_with("26.1") && styles.size() == 4) << key;
      EXPECT_EQ(style.matrix("gm").has_value(), styles.size() == 4) << key;
    }
  }
  const Tuning detail = GlassStyle(builtInDetail[1].style).tuning();
  EXPECT_EQ(detail.blurRadius, 2.5);
  EXPECT_EQ(detail.saturation, 1.35);
  EXPECT_EQ((*detail.matrix)[4], 0.1191F);
}

TEST(GlassStyleTest, SystemGlassTakesTheOptionsThatItHas) {
  struct Case {
    std::string style;
    std::optional<int> glassStyle;
    std::vector<std::pair<std::string, int>> values;
    std::optional<Color> tint;
  };
  for (const Case& each : std::vector<Case>{
           {"", {}, {}, {}},
           {"style=1", 1, {}, {}},
           {"style=2", 0, {}, {}},
           {"style", 0, {}, {}},
           {"style=01", 0, {}, {}},
           // In a fixed order, whatever theirs.
           {"adaptiveAppearance=1,contentLensing=-2,scrimState=+3,subduedState=4,variant=5",
            {},
            {{"variant", 5},
             {"subduedState", 4},
             {"scrimState", 3},
             {"contentLensing", -2},
             {"adaptiveAppearance", 1}},
            {}},
           {"variant=1.0,subduedState=x,scrimState,contentLensing=99999999999999999999",
            {},
            {},
            {}},
           {"other=1,cornerRadius=2", {}, {}, {}},
           {"tint=255.128.0.1", {}, {}, Color{1, 128.0 / 255, 0, 1}},
           {"tint=255.128.0.0.5", {}, {}, {}},
           {"tint=255.128.0", {}, {}, {}},
           {"tint=510.x.0.51.255", {}, {}, Color{2, 0, 0.2, 255}},
       }) {
    ScriptedSystemGlass glass;
    GlassStyle(each.style).apply(glass);
    EXPECT_EQ(glass.style, each.glassStyle) << each.style;
    EXPECT_EQ(glass.values, each.values) << each.style;
    EXPECT_EQ(glass.tint, each.tint) << each.style;
  }
  ScriptedSystemGlass old;
  old.selectors = {"set_scrimState:"};
  GlassStyle("variant=1,scrimState=2,contentLensing=3").apply(old);
  EXPECT_THAT(old.values, ElementsAre(Pair("scrimState", 2)));
}

class GlassBuilderTest : public testing::Test {
 protected:
  std::unique_ptr<TunedBackdropView> make(const std::string& style) {
    return GlassStyle::make(15, content, GlassStyle(style), surface, queue);
  }

  VirtualClock clock;
  VirtualMainQueue queue{clock};
  StageSurface surface{queue};
  std::shared_ptr<HostedView> content = std::make_shared<ScriptedHostedView>();
};

TEST_F(GlassBuilderTest, TheFirstWordThatAppliesDecides) {
  enum class Background { none, tuned, material, glass };
  struct Case {
    std::string style;
    Background background;
    int material;
  };
  for (const Case& each : std::vector<Case>{
           {"cc,none,vev=sheet", Background::none, 0},
           {"vev=sheet,cc", Background::tuned, 13},
           {"vev=sheet", Background::material, 11},
           {"", Background::glass, 0},
           {"r=2,style=1", Background::glass, 0},
       }) {
    surface.contents.clear();
    const auto tuned = make(each.style);
    EXPECT_EQ(surface.content(), content) << each.style;
    EXPECT_EQ(tuned != nullptr, each.background == Background::tuned) << each.style;
    const bool isEffect =
        each.background == Background::tuned || each.background == Background::material;
    ASSERT_EQ(surface.effect != nullptr, isEffect) << each.style;
    if (isEffect) {
      EXPECT_EQ(surface.effect->description(),
                (EffectDescription{each.material, 0, 1, 15, true, true}));
    }
    ASSERT_EQ(surface.systemGlass != nullptr, each.background == Background::glass) << each.style;
    if (surface.systemGlass) {
      EXPECT_EQ(surface.systemGlass->cornerRadius, 15);
      EXPECT_EQ(surface.systemGlass->style.has_value(), each.style.ends_with("style=1"));
    }
  }
}

TEST_F(GlassBuilderTest, ATunedBackdropAppliesItsStyleOnceShown) {
  for (const std::string style : {"cc,r=2,tone=0.5", "cc"}) {
    const auto tuned = make(style);
    ASSERT_TRUE(tuned);
    EXPECT_EQ(tuned->tuning(), GlassStyle(style).tuning());
    surface.effect->layers = ScriptedEffectLayer::systemTree();
    surface.effect->moveToWindow(true);
    queue.drain();
    const auto& values = surface.effect->layers->find("backdrop")->values;
    EXPECT_EQ(values.at("filters.gaussianBlur.inputRadius"), style == "cc" ? 6 : 2) << style;
  }
  // A plain material is shown as it is.
  static_cast<void>(make("vev=sheet,r=2"));
  surface.effect->layers = ScriptedEffectLayer::systemTree();
  surface.effect->moveToWindow(true);
  queue.drain();
  EXPECT_THAT(surface.effect->layers->find("backdrop")->values, IsEmpty());
}

}  // namespace
}  // namespace plemora
