#include "menubar/panel_view.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/scripted_route_picker.h"
#include "audio/audio_world.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Kind = PanelRowKind;

constexpr const char* music = "com.example.Music";
constexpr const char* radio = "com.example.Radio";

struct PanelViewTest : testing::Test {
  AudioWorld world;
  ScriptedRoutePicker routePicker;
  std::unique_ptr<PanelView> view;
  int setUps = 0;
  int soundSettings = 0;
  int rowChanges = 0;
  std::vector<std::pair<std::string, float>> moves;  ///< told of sliders
  std::vector<Subscription> subscriptions;

  ~PanelViewTest() override { view.reset(); }

  PanelView& start() {
    world.start();
    view = std::make_unique<PanelView>(
        *world.mixer, PanelView::Services{world.defaults, world.clock, routePicker, world.main},
        [this] { ++setUps; }, [this] { ++soundSettings; });
    subscriptions.push_back(view->rows.subscribe([this](const auto&) { ++rowChanges; }));
    subscriptions.push_back(view->sliderChange.subscribe(
        [this](const auto& state) { moves.emplace_back(state.id, state.volume); }));
    return *view;
  }

  /// With two apps that play, and nothing counted yet.
  PanelView& startWithApps() {
    world.play(11, music, "Music", world.speakers);
    world.play(12, radio, "Radio", world.speakers);
    return start();
  }

  MixerModel& mixer() { return *world.mixer; }

  std::vector<std::pair<Kind, std::string>> rows() const {
    std::vector<std::pair<Kind, std::string>> result;
    for (const PanelRow& row : view->rows.get()) {
      result.emplace_back(row.kind, row.title);
    }
    return result;
  }

  std::vector<PanelRow> rows(Kind kind) const {
    std::vector<PanelRow> result;
    for (const PanelRow& row : view->rows.get()) {
      if (row.kind == kind) {
        result.push_back(row);
      }
    }
    return result;
  }

  PanelRow row(Kind kind, const std::string& id) const {
    for (const PanelRow& row : rows(kind)) {
      if (row.id == id) {
        return row;
      }
    }
    ADD_FAILURE() << "no such row: " << id;
    return {};
  }
  PanelRow app(const std::string& id) const { return row(Kind::app, id); }
  PanelRow master() const { return row(Kind::master, PanelView::masterID); }

  /// UIDs of the devices that the open list shows as chosen.
  std::vector<std::string> chosen() const {
    std::vector<std::string> result;
    for (const PanelRow& list : rows(Kind::outputs)) {
      for (const DeviceEntry& device : list.devices) {
        if (device.isSelected) {
          result.push_back(device.uid);
        }
      }
    }
    return result;
  }

  void forget() {
    rowChanges = 0;
    moves.clear();
  }
};

TEST_F(PanelViewTest, ListsEverythingInOrder) {
  world.play(12, radio, "Radio", world.speakers);
  world.play(11, music, "Music", world.speakers);
  start().toggleExpanded(music);
  EXPECT_THAT(rows(), ElementsAre(Pair(Kind::title, "Sound"), Pair(Kind::master, ""),
                                  Pair(Kind::divider, ""), Pair(Kind::header, "Apps"),
                                  Pair(Kind::app, "Music"), Pair(Kind::outputs, "Output for Music"),
                                  Pair(Kind::app, "Radio"), Pair(Kind::header, "Output"),
                                  Pair(Kind::device, "Speakers"), Pair(Kind::device, "Desk"),
                                  Pair(Kind::device, "Headset"), Pair(Kind::airPlay, "AirPlay"),
                                  Pair(Kind::settings, "Sound Settings…")));
  const PanelRow airPlay = row(Kind::airPlay, "AirPlay");
  EXPECT_EQ(airPlay.detail, "AirPlay speakers and TVs");
  EXPECT_EQ(airPlay.symbol, "chevron.right");
  view->openSoundSettings();
  EXPECT_EQ(soundSettings, 1);
}

TEST_F(PanelViewTest, SaysThatNoAppPlays) {
  start();
  EXPECT_THAT(rows(), testing::Contains(Pair(Kind::empty, "No apps are playing sound")));
  EXPECT_THAT(rows(Kind::app), IsEmpty());
  EXPECT_GE(rows(Kind::empty).at(0).height, 34);
}

TEST_F(PanelViewTest, AsksForThePermissionInPlaceOfTheApps) {
  for (const std::optional<int> refused :
       {std::optional(1), std::optional(2), std::optional<int>()}) {
    world.consent.setPreflight(refused);
    startWithApps();
    EXPECT_THAT(rows(Kind::app), IsEmpty());
    EXPECT_THAT(rows(Kind::empty), IsEmpty());
    const PanelRow permission = row(Kind::permission, "Turn on app volumes");
    EXPECT_EQ(permission.detail, "Allow audio access to control each app");
    EXPECT_EQ(permission.symbol, "chevron.right");
    view->setUp();

    world.consent.setPreflight(0);
    mixer().refreshPermission();
    EXPECT_THAT(rows(Kind::permission), IsEmpty());
    EXPECT_EQ(rows(Kind::app).size(), 2u);
    view.reset();
    world.mixer.reset();
    world.settle();
  }
  EXPECT_EQ(setUps, 3);
}

TEST_F(PanelViewTest, ShowsTheMasterOfTheDefaultDevice) {
  start();
  EXPECT_EQ(master().symbol, "speaker.fill");
  EXPECT_EQ(master().symbolSize, 15);
  EXPECT_EQ(master().sliderLabel, "Volume");
  world.hal.updateDevice(world.headset, [](auto& device) { device.volume = 0.25f; });
  world.hal.setDefaultOutput(world.headset);
  world.settle();
  EXPECT_EQ(master().symbol, "headphones");
  EXPECT_EQ(master().symbolSize, 14);
  EXPECT_EQ(master().volume, 0.25f);

  view->toggleMasterMute();
  world.settle();
  EXPECT_TRUE(master().isDimmed);
  EXPECT_EQ(world.hal.device(world.headset).isMuted, true);
  view->toggleMasterMute();
  world.settle();
  EXPECT_FALSE(master().isDimmed);
}

TEST_F(PanelViewTest, DisablesAMasterThatCannotBeSet) {
  world.hal.updateDevice(world.speakers, [](auto& device) { device.hasSettableVolume = false; });
  start();
  EXPECT_FALSE(master().isEnabled);
  EXPECT_EQ(master().volume, 1.0f);
  view->setMasterVolume(0.25f);
  world.settle();
  EXPECT_EQ(master().volume, 1.0f);
  EXPECT_EQ(world.hal.device(world.speakers).volume, 1.0f);

  world.hal.setDefaultOutput(world.usb);
  world.settle();
  EXPECT_TRUE(master().isEnabled);
  for (const AudioObjectID device : {world.usb, world.headset, world.speakers}) {
    world.hal.removeDevice(device);
  }
  world.settle();
  EXPECT_FALSE(master().isEnabled);
  EXPECT_THAT(rows(Kind::device), IsEmpty());
  view->toggleMasterMute();
  view->setMasterVolume(0.5f);
  EXPECT_EQ(master().volume, 1.0f);
}

TEST_F(PanelViewTest, DescribesAnApp) {
  startWithApps();
  PanelRow row = app(music);
  EXPECT_EQ(row.title, "Music");
  EXPECT_EQ(row.icon.source, "Music.png");
  EXPECT_EQ(row.muteHelp, "Mute Music");
  EXPECT_EQ(row.outputHelp, "Output for Music");
  EXPECT_EQ(row.sliderLabel, "Music volume");
  EXPECT_EQ(row.symbol, mixer().outputs().defaultDevice()->symbol);
  EXPECT_EQ(row.iconOpacity, 1);
  EXPECT_EQ(row.iconSaturation, 1);

  view->toggleMute(music);
  row = app(music);
  EXPECT_EQ(row.muteHelp, "Unmute Music");
  EXPECT_LT(row.iconOpacity, 1);
  EXPECT_LT(row.iconSaturation, 1);
  EXPECT_TRUE(row.isDimmed);
  EXPECT_TRUE(row.isEnabled) << "raising it unmutes";
}

TEST_F(PanelViewTest, TheSettingDecidesTheStyleOfTheRows) {
  world.play(11, music, "Music", world.speakers);
  struct Case {
    std::optional<std::string> setting;
    bool isCompact;
  };
  for (const Case& each : std::vector<Case>{
           {std::nullopt, true}, {"lines", false}, {"compact", true}, {"Lines", true}}) {
    if (each.setting) {
      world.defaults.setString("appRowStyle", *each.setting);
    }
    start();
    EXPECT_EQ(app(music).isCompact, each.isCompact) << each.setting.value_or("none");
    view.reset();
    world.mixer.reset();
    world.settle();
  }
}

TEST_F(PanelViewTest, OpensOneListOfOutputsAtATime) {
  PanelView& panel = startWithApps();
  const double closed = panel.height();
  panel.toggleExpanded(music);
  EXPECT_EQ(panel.expandedApp(), music);
  EXPECT_TRUE(app(music).isOpen);
  EXPECT_GT(panel.height(), closed);
  panel.toggleExpanded(radio);
  EXPECT_EQ(panel.expandedApp(), radio);
  EXPECT_FALSE(app(music).isOpen);
  ASSERT_EQ(rows(Kind::outputs).size(), 1u);
  EXPECT_EQ(rows(Kind::outputs)[0].id, radio);
  panel.toggleExpanded(radio);
  EXPECT_EQ(panel.expandedApp(), std::nullopt);
  EXPECT_EQ(panel.height(), closed);
  panel.toggleExpanded("com.example.Absent");
  EXPECT_EQ(panel.expandedApp(), std::nullopt);
}

TEST_F(PanelViewTest, ClosesTheListOfAnAppThatGoesAndOfAPanelThatCloses) {
  const AudioObjectID process = world.play(11, music, "Music", world.speakers);
  world.play(12, radio, "Radio", world.speakers);
  PanelView& panel = start();
  panel.setVisible(true);
  panel.toggleExpanded(music);
  world.hal.removeProcess(process);
  world.pass(1);
  EXPECT_EQ(panel.expandedApp(), std::nullopt);
  world.play(13, music, "Music", world.speakers);
  world.pass(1);
  EXPECT_FALSE(app(music).isOpen) << "an app that comes back is not opened by itself";

  panel.toggleExpanded(radio);
  panel.setVisible(false);
  EXPECT_THAT(rows(Kind::outputs), IsEmpty());
}

TEST_F(PanelViewTest, MarksWhereAnAppIsToBeHeard) {
  PanelView& panel = startWithApps();
  panel.toggleExpanded(music);
  EXPECT_THAT(chosen(), ElementsAre("speakers"));
  panel.setOutput("headset", music);
  EXPECT_THAT(chosen(), ElementsAre("headset"));
  EXPECT_EQ(app(music).symbol, "headphones");
  EXPECT_EQ(panel.expandedApp(), music) << "the choice is seen";
  panel.setOutput("nowhere", music);
  EXPECT_THAT(chosen(), ElementsAre("headset"));

  world.hal.removeDevice(world.headset);
  world.settle();
  EXPECT_THAT(chosen(), ElementsAre("speakers")) << "where it is heard meanwhile";
  world.hal.setDefaultOutput(world.usb);
  world.settle();
  EXPECT_THAT(chosen(), ElementsAre("usb"));
}

TEST_F(PanelViewTest, ASliderMovesWithoutItsRowBeingListedAnew) {
  PanelView& panel = startWithApps();
  forget();
  panel.setVolume(0.5f, music);
  EXPECT_EQ(app(music).volume, 0.5f);
  mixer().setVolume(0.25f, music);  // from elsewhere
  EXPECT_EQ(app(music).volume, 0.25f);
  EXPECT_THAT(moves, ElementsAre(Pair(music, 0.5f), Pair(music, 0.25f)));
  EXPECT_EQ(rowChanges, 0);
  mixer().publish();
  EXPECT_EQ(app(music).volume, 0.25f);
  EXPECT_EQ(rowChanges, 0);

  panel.setVolume(0.5f, "com.example.Absent");
  EXPECT_EQ(world.defaults.data("appLevels").value_or("").find("Absent"), std::string::npos);
}

TEST_F(PanelViewTest, ASliderStaysInTheHandThatHoldsIt) {
  PanelView& panel = startWithApps();
  panel.setEditing(true, music);
  panel.setVolume(0.5f, music);
  mixer().setVolume(0.25f, music);
  EXPECT_EQ(app(music).volume, 0.5f);
  mixer().toggleMute(radio);  // publishes every row
  EXPECT_EQ(app(music).volume, 0.5f);
  panel.setEditing(false, music);
  EXPECT_EQ(app(music).volume, 0.25f);
}

TEST_F(PanelViewTest, AHoldEndsWithItsApp) {
  const AudioObjectID process = world.play(11, music, "Music", world.speakers);
  PanelView& panel = start();
  panel.setEditing(true, music);
  panel.setVolume(0.5f, music);
  world.hal.removeProcess(process);
  world.pass(1);
  world.play(13, music, "Music", world.speakers);
  world.pass(1);
  mixer().setVolume(0.25f, music);
  EXPECT_EQ(app(music).volume, 0.25f);
}

TEST_F(PanelViewTest, TheMasterShowsWhatTheUserSetUntilTheDeviceHasAnswered) {
  PanelView& panel = start();
  panel.setMasterVolume(0.5f);
  EXPECT_EQ(master().volume, 0.5f);
  EXPECT_EQ(world.hal.device(world.speakers).volume, 0.5f);
  world.pass(1);
  EXPECT_EQ(master().volume, 0.5f);

  const auto setElsewhere = [&](float volume) {
    world.hal.updateDevice(world.speakers, [&](auto& device) { device.volume = volume; });
    world.settle();
  };
  setElsewhere(0.25f);
  EXPECT_EQ(master().volume, 0.25f);

  panel.setEditing(true, PanelView::masterID);
  panel.setMasterVolume(0.75f);
  setElsewhere(0.7f);  // an older answer, or one that the device has rounded
  EXPECT_EQ(master().volume, 0.75f);
  world.pass(1);
  EXPECT_EQ(master().volume, 0.75f) << "still held";
  panel.setEditing(false, PanelView::masterID);
  EXPECT_EQ(master().volume, 0.7f);

  panel.setEditing(true, PanelView::masterID);
  panel.setMasterVolume(0.1f);
  world.hal.setDefaultOutput(world.usb);
  world.settle();
  EXPECT_EQ(master().volume, 1.0f) << "that was another device's";
}

TEST_F(PanelViewTest, MetersRunWhileThePanelIsSeen) {
  PanelView& panel = startWithApps();
  panel.setVolume(0.5f, music);
  world.settle();
  const int timers = world.main.pendingTimers();
  panel.setVisible(true);
  EXPECT_EQ(world.main.pendingTimers(), timers + 1);
  world.hal.step(64);
  world.pass(LevelMeters::interval);
  // The player's full scale, at a gain of a quarter: 12 of 48 decibels down.
  ASSERT_TRUE(panel.meters.get().contains(music));
  EXPECT_NEAR(panel.meters.get().at(music), 0.75, 0.01);
  EXPECT_FALSE(panel.meters.get().contains(radio)) << "no tap, no meter";
  panel.setVisible(false);
  EXPECT_EQ(world.main.pendingTimers(), timers);
  EXPECT_THAT(panel.meters.get(), IsEmpty());

  world.defaults.setBoolean("showMeters", false);
  panel.setVisible(true);
  EXPECT_EQ(world.main.pendingTimers(), timers);
  EXPECT_TRUE(panel.isVisible());
}

}  // namespace
}  // namespace plemora
