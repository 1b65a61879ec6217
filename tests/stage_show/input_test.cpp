#include <algorithm>
#include <memory>

#include "adapters/stage/memory_defaults.h"
#include "audio/mixer_model.h"
#include "stage_show/show_rig.h"

namespace plemora {
namespace {

/// The real panel in a window of the stage, with one app that plays.
struct PanelOnStageTest : StageShowTest {
  MemoryDefaults defaults;
  ControlCenterLook look{defaults, desktop.systemInfo, desktop.appearance};
  std::unique_ptr<MixerModel> mixer;
  std::unique_ptr<PanelView> view;
  std::unique_ptr<PanelWindow> window;

  void SetUp() override {
    StageShowTest::SetUp();
    desktop.plug({.uid = "speakers", .name = "Speakers", .volume = 0.5F});
    desktop.program.start("com.quorvane.mixer", "Plemora");
    mixer = std::make_unique<MixerModel>(MixerServices{desktop.hal,
                                                       desktop.hal,
                                                       desktop.mainQueue,
                                                       desktop.queues,
                                                       desktop.clock,
                                                       desktop.workspace,
                                                       defaults,
                                                       desktop.consent,
                                                       desktop.systemInfo,
                                                       {},
                                                       desktop.program.pid()});
    desktop.players.start("org.example.tune", "Tune");
    view = std::make_unique<PanelView>(
        *mixer,
        PanelView::Services{defaults, desktop.clock, desktop.routePicker, desktop.mainQueue}, [] {},
        [] {});
    show.advance(1);
    const auto content = show.makeContent(*view, look);
    view->setVisible(true);
    content->setVisible(true);
    PanelWindowOptions options;
    options.level = popUpMenuWindowLevel;
    window = show.windows().makePanel(options);
    window->surface().setContent(content);
    const double height = content->fittingHeight();
    window->setFrame({500, 700 - height, 308, height});
    window->order(WindowOrder::keyAndFront);
    show.advance(0.5);
    show.picture(screen);
  }
  void TearDown() override {
    window.reset();
    view.reset();
    mixer.reset();
    show.settle();
    StageShowTest::TearDown();
  }

  /// Named as a screen reader has it. value: only one that has a value.
  StageControl control(const std::string& name, bool isSlider = false) {
    const auto controls = show.controls();
    const auto found = std::ranges::find_if(controls, [&](const StageControl& candidate) {
      return candidate.name == name && candidate.value.has_value() == isSlider;
    });
    EXPECT_NE(found, controls.end()) << name;
    return found != controls.end() ? *found : StageControl{};
  }
  static Point at(const StageControl& control, double part = 0.5) {
    return {control.frame.x + control.frame.width * part, control.frame.midY()};
  }
  float volume() {
    mixer->publish();
    show.settle();
    return mixer->channels.get().empty() ? -1 : mixer->channels.get().front().volume;
  }
};

TEST_F(PanelOnStageTest, ASliderDraggedByTheStagesPointerTurnsTheApp) {
  const StageControl slider = control("Tune volume", true);
  EXPECT_EQ(slider.value, 1);
  desktop.drag(at(slider, 0.95), at(slider, 0.5));
  show.settle();
  EXPECT_NEAR(volume(), 0.5, 0.06);
  EXPECT_NEAR(control("Tune volume", true).value.value_or(-1), volume(), 0.01);
  // A drag that leaves the window goes on.
  desktop.drag(at(slider, 0.5), {slider.frame.x - 200, slider.frame.midY()});
  EXPECT_EQ(volume(), 0);
  // Released, the slider is left alone.
  desktop.movePointer(at(slider, 0.9));
  EXPECT_EQ(volume(), 0);
}

TEST_F(PanelOnStageTest, ControlsAreToldWhereTheWindowIs) {
  const Rect before = control("Tune volume", true).frame;
  EXPECT_TRUE(window->frame().inset(-1, -1).contains(before.origin()));
  window->setFrame(window->frame().offset(-120, 30));
  EXPECT_EQ(control("Tune volume", true).frame, before.offset(-120, 30));
  window->order(WindowOrder::out);
  EXPECT_TRUE(show.controls().empty());
}

}  // namespace
}  // namespace plemora
