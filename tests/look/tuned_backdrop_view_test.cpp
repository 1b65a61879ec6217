#include "skin/look/tuned_backdrop_view.h"

#include <gmock/gmock.h>

#include <cmath>

#include "adapters/stage/scripted_effect_view.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;
using Tuning = TunedBackdropView::Tuning;

constexpr const char* radiusPath = "filters.gaussianBlur.inputRadius";
constexpr const char* saturationPath = "filters.colorSaturate.inputAmount";

class TunedBackdropViewTest : public testing::Test {
 protected:
  void show(ScriptedEffectLayer::Pointer layers = ScriptedEffectLayer::systemTree()) {
    effect->layers = std::move(layers);
    effect->moveToWindow(true);
    queue.drain();
  }
  ScriptedEffectLayer& layer(const std::string& name) { return *effect->layers->find(name); }
  int writes() { return layer("backdrop").writes; }

  VirtualClock clock;
  VirtualMainQueue queue{clock};
  std::shared_ptr<ScriptedEffectView> effect = std::make_shared<ScriptedEffectView>(queue);
  std::optional<TunedBackdropView> view{std::in_place, effect, queue};
};

TEST_F(TunedBackdropViewTest, PushesTheTuningIntoTheLayersByName) {
  show();
  EXPECT_THAT(layer("backdrop").values,
              UnorderedElementsAre(Pair(radiusPath, 6.0), Pair(saturationPath, 1.7)));
  EXPECT_THAT(layer("backdrop").filters(), IsEmpty());
  EXPECT_THAT(layer("fill").values, ElementsAre(Pair("opacity", 0.25)));
  EXPECT_THAT(layer("tone").values, ElementsAre(Pair("opacity", 0.0)));
  EXPECT_THAT(layer("desktop tint").values, ElementsAre(Pair("hidden", 0.0)));

  ColorMatrix matrix{};
  matrix[3] = 0.5F;
  view->setTuning({.blurRadius = 2,
                   .saturation = 1,
                   .fillOpacity = 0.5F,
                   .toneOpacity = 0.75F,
                   .gain = 1.5,
                   .hideDesktopTint = true,
                   .overlay = {},
                   .matrix = matrix,
                   .margin = 6});
  EXPECT_EQ(layer("backdrop").values[radiusPath], 6) << "not before the layout";
  queue.drain();
  EXPECT_THAT(layer("backdrop").values,
              UnorderedElementsAre(Pair(radiusPath, 2.0), Pair("marginWidth", 6.0),
                                   Pair(saturationPath, 1.0)));
  EXPECT_THAT(layer("backdrop").filters(),
              ElementsAre(EffectFilter{"mixerGain", "colorMatrix", matrix}));
  EXPECT_EQ(layer("fill").values["opacity"], 0.5);
  EXPECT_EQ(layer("tone").values["opacity"], 0.75);
  EXPECT_EQ(layer("desktop tint").values["hidden"], 1);
}

TEST_F(TunedBackdropViewTest, TakesOverAViewThatIsShownAlready) {
  view.reset();
  show();
  EXPECT_EQ(writes(), 0);
  view.emplace(effect, queue);
  queue.drain();
  EXPECT_EQ(writes(), 2);
}

TEST_F(TunedBackdropViewTest, FindsEveryBackdropHoweverDeep) {
  const auto deep = std::make_shared<ScriptedEffectLayer>("backdrop");
  const auto first = std::make_shared<ScriptedEffectLayer>(
      "backdrop", std::vector{std::make_shared<ScriptedEffectLayer>(
                      "group", std::vector{std::make_shared<ScriptedEffectLayer>("fill"), deep})});
  // Behind a backdrop that has been found the walk goes on.
  ScriptedEffectLayer root("", {first, std::make_shared<ScriptedEffectLayer>("Backdrop"),
                                std::make_shared<ScriptedEffectLayer>("tone")});
  EXPECT_TRUE(view->apply(root));
  EXPECT_EQ(deep->values[radiusPath], 6);
  EXPECT_EQ(first->values[radiusPath], 6);
  EXPECT_EQ(first->find("fill")->values["opacity"], 0.25);
  EXPECT_EQ(root.find("Backdrop")->writes, 0);
  EXPECT_EQ(root.find("tone")->writes, 1);

  ScriptedEffectLayer none("", {std::make_shared<ScriptedEffectLayer>("fill")});
  EXPECT_FALSE(view->apply(none));
  EXPECT_EQ(none.find("fill")->writes, 1);
}

TEST_F(TunedBackdropViewTest, GainFiltersReplaceEachOtherAndLeaveTheSystems) {
  show();
  const EffectFilter blur{"gaussianBlur", "gaussianBlur", {}};
  const EffectFilter sharpen{"own", "colorMatrix", {}};
  const EffectFilter old{"mixerGain", "colorMatrix", {}};
  layer("backdrop").setFilters({old, blur, old, sharpen});
  view->setTuning({.gain = 1.25});
  queue.drain();
  const ColorMatrix gain{1.25F, 0, 0, 0, 0, 0, 1.25F, 0, 0, 0, 0, 0, 1.25F, 0, 0, 0, 0, 0, 1, 0};
  EXPECT_THAT(layer("backdrop").filters(),
              ElementsAre(blur, sharpen, EffectFilter{"mixerGain", "colorMatrix", gain}));
  view->setTuning({.gain = 1e300});
  queue.drain();
  ASSERT_THAT(layer("backdrop").filters(), SizeIs(3));
  EXPECT_TRUE(std::isfinite(layer("backdrop").filters()[2].inputColorMatrix[0]));
}

TEST_F(TunedBackdropViewTest, DoesWithoutWhatTheSystemLacks) {
  auto layers = ScriptedEffectLayer::systemTree();
  layers->find("backdrop")->filterTypes.clear();
  layers->find("backdrop")->selectors.clear();
  view->setTuning({.gain = 2, .margin = 6});
  show(layers);
  EXPECT_THAT(layer("backdrop").values,
              UnorderedElementsAre(Pair(radiusPath, 6.0), Pair(saturationPath, 1.7)));
  EXPECT_THAT(layer("backdrop").filters(), IsEmpty());
}

TEST_F(TunedBackdropViewTest, WalksOnlyWhenSomethingMayHaveChanged) {
  queue.drain();
  effect->layers = ScriptedEffectLayer::systemTree();
  effect->resize({0, 0, 10, 10});
  queue.drain();
  EXPECT_EQ(writes(), 0) << "in no window yet";
  show(effect->layers);
  EXPECT_EQ(writes(), 2);

  effect->resize({0, 0, 20, 20});
  view->setTuning(Tuning{});
  queue.drain();
  EXPECT_EQ(writes(), 2) << "the same tuning, and a mere layout";

  view->setTuning({.margin = 6});
  queue.drain();
  EXPECT_EQ(writes(), 5);
  view->setTuning({.margin = 6});
  queue.drain();
  EXPECT_EQ(writes(), 5);

  effect->moveToWindow(true);
  queue.drain();
  EXPECT_EQ(writes(), 8);

  effect->changeAppearance(ScriptedEffectLayer::systemTree());
  queue.drain();
  EXPECT_EQ(writes(), 3) << "the new layers";
  EXPECT_EQ(layer("backdrop").values["marginWidth"], 6);
}

TEST_F(TunedBackdropViewTest, WaitsForLayersThatAppearLate) {
  show(std::make_shared<ScriptedEffectLayer>(""));
  // drain() also ran the retries: all of them are spent.
  effect->layers = ScriptedEffectLayer::systemTree();
  effect->resize({0, 0, 10, 10});
  queue.drain();
  EXPECT_EQ(writes(), 2) << "a later layout finds them all the same";

  // Here they appear between two retries.
  auto fill = std::make_shared<ScriptedEffectLayer>("fill");
  effect->layers = std::make_shared<ScriptedEffectLayer>("", std::vector{fill});
  effect->moveToWindow(true);
  queue.async([&] { queue.async([&] { effect->layers = ScriptedEffectLayer::systemTree(); }); });
  queue.drain();
  EXPECT_EQ(writes(), 2);
  EXPECT_GE(fill->writes, 1);
}

TEST_F(TunedBackdropViewTest, GivesUpAfterThirtyRetries) {
  auto fill = std::make_shared<ScriptedEffectLayer>("fill");
  const auto bare = std::make_shared<ScriptedEffectLayer>("", std::vector{fill});
  show(bare);
  EXPECT_EQ(fill->writes, 31);

  effect->moveToWindow(true);
  queue.drain();
  EXPECT_EQ(fill->writes, 32) << "one more attempt, no more retries";

  view->setTuning({.margin = 1});
  queue.drain();
  EXPECT_EQ(fill->writes, 63) << "a new tuning has all of them again";

  show();
  show(bare);
  EXPECT_EQ(fill->writes, 94) << "and so has one that was applied meanwhile";
}

TEST_F(TunedBackdropViewTest, TheOverlayCoversTheViewWhileThereIsOne) {
  effect->resize({5, 5, 300, 200});
  show();
  EXPECT_EQ(effect->overlay(), nullptr);
  view->setTuning({.overlay = TunedBackdropView::Overlay{1, 0.2}});
  queue.drain();
  const auto overlay = effect->overlay();
  ASSERT_NE(overlay, nullptr);
  EXPECT_EQ(effect->overlayIndex(), 1);
  EXPECT_EQ(overlay->frame, (Rect{0, 0, 300, 200}));
  EXPECT_EQ(overlay->backgroundColor, (Color{1, 1, 1, 0.2}));

  effect->resize({0, 0, 300, 400});
  view->setTuning({.overlay = TunedBackdropView::Overlay{0.5, 0.3}});
  queue.drain();
  EXPECT_EQ(effect->overlay(), overlay);
  EXPECT_EQ(overlay->frame, (Rect{0, 0, 300, 400}));
  EXPECT_EQ(overlay->backgroundColor, (Color{0.5, 0.5, 0.5, 0.3}));

  view->setTuning({});
  queue.drain();
  EXPECT_EQ(effect->overlay(), nullptr);
}

TEST_F(TunedBackdropViewTest, LeavesNothingBehindWhenItGoes) {
  view->setTuning({.overlay = TunedBackdropView::Overlay{1, 0.2}});
  effect->layers = std::make_shared<ScriptedEffectLayer>("");
  effect->moveToWindow(true);
  // It goes while a retry is under way.
  queue.async([&] { view.reset(); });
  queue.drain();
  EXPECT_FALSE(effect->hasDelegate());
  EXPECT_EQ(effect->overlay(), nullptr);
  effect->changeAppearance(ScriptedEffectLayer::systemTree());
  queue.drain();
  EXPECT_EQ(writes(), 0);
}

}  // namespace
}  // namespace plemora
