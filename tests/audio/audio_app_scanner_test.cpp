#include "audio/audio_app_scanner.h"

#include <gtest/gtest.h>

#include "audio/audio_world.h"

namespace plemora {
namespace {

using Policy = ActivationPolicy;

struct ScannerTest : testing::Test {
  AudioWorld world;
  std::unique_ptr<AudioAppScanner> scanner;
  std::vector<std::vector<AudioApp>> changes;

  void scan() {
    scanner = std::make_unique<AudioAppScanner>(world.hal, world.main, world.workspace,
                                                AudioWorld::ownPid);
    scanner->onChange = [this](const std::vector<AudioApp>& apps) { changes.push_back(apps); };
    scanner->scan();
  }

  const std::vector<AudioApp>& apps() { return changes.back(); }

  int scans() {
    return world.hal.faults().calls(HalCall::data, kAudioHardwarePropertyProcessObjectList);
  }
};

// Which app a process is put down to. The process has PID 100 and, where it has one, the bundle
// identifier org.example.Browser.Renderer; the browser has PID 10.
TEST_F(ScannerTest, finds_the_app_that_owns_a_process) {
  struct Case {
    const char* what;
    std::optional<Policy> process;
    std::optional<std::int32_t> responsible;
    Policy browser;
    const char* browserID;
    std::optional<std::string> owner;
  };
  const Case cases[] = {
      {"a regular app owns itself", Policy::regular, 10, Policy::regular, "org.example.Browser",
       "org.example.Browser.Renderer"},
      {"the responsible app", Policy::accessory, 10, Policy::regular, "com.other.Browser",
       "com.other.Browser"},
      {"the responsible app of a plain process", std::nullopt, 10, Policy::regular,
       "com.other.Browser", "com.other.Browser"},
      {"a responsible process that is no regular app", std::nullopt, 10, Policy::accessory,
       "com.other.Browser", std::nullopt},
      {"responsible for itself, but a prefix", Policy::prohibited, 100, Policy::regular,
       "org.example.Browser", "org.example.Browser"},
      {"responsible PID 0", Policy::prohibited, 0, Policy::regular, "org.example.Browser",
       "org.example.Browser"},
      {"a prefix without the dot is none", Policy::prohibited, std::nullopt, Policy::regular,
       "org.example.Brow", std::nullopt},
      {"a prefix app has to be regular", Policy::prohibited, std::nullopt, Policy::accessory,
       "org.example.Browser", std::nullopt},
      {"nobody owns a plain process", std::nullopt, std::nullopt, Policy::regular,
       "org.example.Browser", std::nullopt},
      {"a responsible process that has gone", Policy::prohibited, 77, Policy::regular,
       "com.other.Browser", std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    AudioWorld fresh;
    fresh.launch(10, c.browserID, "Browser", c.browser);
    if (c.process) {
      fresh.launch(100, "org.example.Browser.Renderer", "Renderer", *c.process);
    }
    if (c.responsible) {
      fresh.workspace.setResponsiblePid(100, *c.responsible);
    }
    fresh.hal.addProcess({.pid = 100});
    AudioAppScanner subject(fresh.hal, fresh.main, fresh.workspace, AudioWorld::ownPid);
    std::vector<AudioApp> found;
    subject.onChange = [&](const std::vector<AudioApp>& apps) { found = apps; };
    subject.scan();
    ASSERT_EQ(found.size(), c.owner ? 1u : 0u);
    if (c.owner) {
      EXPECT_EQ(found[0].id, *c.owner);
      EXPECT_EQ(found[0].pid, *c.owner == "org.example.Browser.Renderer" ? 100 : 10);
    }
  }
}

TEST_F(ScannerTest, folds_the_processes_of_an_app_into_one_record) {
  world.launch(10, "org.example.Browser", "Browser");
  world.workspace.setResponsiblePid(101, 10);
  world.workspace.setResponsiblePid(102, 10);
  const auto first = world.hal.addProcess(
      {.pid = 101, .isRunningOutput = false, .devices = {world.usb, world.speakers}});
  const auto second = world.hal.addProcess(
      {.pid = 102, .isRunningOutput = true, .devices = {world.speakers, world.headset}});
  const auto third =
      world.hal.addProcess({.pid = 10, .isRunningOutput = false, .devices = {world.usb}});
  scan();
  const AudioApp expected{.id = "org.example.Browser",
                          .name = "Browser",
                          .pid = 10,
                          .processObjects = {first, second, third},
                          .isPlaying = true,
                          .outputDevices = {world.usb, world.speakers, world.headset}};
  EXPECT_EQ(apps(), std::vector{expected});
}

TEST_F(ScannerTest, leaves_out_its_own_process_and_what_has_no_PID_or_no_identity) {
  world.play(AudioWorld::ownPid, "com.quorvane.mixer", "Plemora", world.usb);
  world.play(0, "com.zero", "Zero", world.usb);
  world.workspace.launch(
      {.pid = 20, .localizedName = "No ID", .activationPolicy = Policy::regular});
  world.hal.addProcess({.pid = 20});
  const auto unreadable = world.play(21, "com.unreadable", "Unreadable", world.usb);
  world.hal.faults().add(
      {.call = HalCall::data, .selector = kAudioProcessPropertyPID, .object = unreadable});
  world.play(22, "com.good", "Good", world.usb);
  scan();
  ASSERT_EQ(apps().size(), 1u);
  EXPECT_EQ(apps()[0].id, "com.good");
}

TEST_F(ScannerTest, takes_defaults_for_what_cannot_be_read) {
  world.workspace.launch(
      {.pid = 30, .bundleID = "com.nameless", .activationPolicy = Policy::regular});
  const auto process = world.hal.addProcess({.pid = 30, .devices = {world.usb}});
  world.hal.faults().add({.call = HalCall::data, .selector = kAudioProcessPropertyIsRunningOutput});
  world.hal.faults().add({.call = HalCall::dataSize, .selector = kAudioProcessPropertyDevices});
  scan();
  const AudioApp expected{
      .id = "com.nameless", .name = "com.nameless", .pid = 30, .processObjects = {process}};
  EXPECT_EQ(apps(), std::vector{expected});
  EXPECT_EQ(apps()[0].icon(world.workspace), world.workspace.genericApplicationIcon());
}

TEST_F(ScannerTest, makes_one_scan_of_a_storm_of_notifications) {
  const auto process = world.play(11, "com.a", "A", world.usb);
  scan();
  world.settle();
  const int before = scans();
  world.hal.notify(kAudioObjectSystemObject,
                   {kAudioHardwarePropertyProcessObjectList, kAudioObjectPropertyScopeGlobal}, 50);
  world.hal.notify(process, {kAudioProcessPropertyIsRunningOutput, kAudioObjectPropertyScopeGlobal},
                   50);
  world.hal.notify(process, {kAudioProcessPropertyDevices, kAudioObjectPropertyScopeOutput}, 50);
  world.pass(0.119);
  EXPECT_EQ(scans(), before);
  world.pass(0.002);
  EXPECT_EQ(scans(), before + 1);
  world.pass(10);
  EXPECT_EQ(scans(), before + 1);
  EXPECT_EQ(changes.size(), 1u) << "nothing visible has changed";
  EXPECT_EQ(world.main.pendingTimers(), 0);
}

TEST_F(ScannerTest, sees_processes_come_play_move_and_go) {
  scan();
  EXPECT_TRUE(changes.empty()) << "an empty list is no change from the empty start";
  const auto process = world.play(11, "com.a", "A", world.usb, false);
  world.pass(0.13);
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_FALSE(apps()[0].isPlaying);

  world.hal.updateProcess(process, [](SimulatedProcess& p) { p.isRunningOutput = true; });
  world.pass(0.13);
  ASSERT_EQ(changes.size(), 2u);
  EXPECT_TRUE(apps()[0].isPlaying);

  world.hal.updateProcess(process, [&](SimulatedProcess& p) { p.devices = {world.headset}; });
  world.pass(0.13);
  ASSERT_EQ(changes.size(), 3u);
  EXPECT_EQ(apps()[0].outputDevices, std::vector{world.headset});

  const int listeners = world.hal.liveListeners();
  world.hal.removeProcess(process);
  world.pass(0.13);
  ASSERT_EQ(changes.size(), 4u);
  EXPECT_TRUE(apps().empty());
  EXPECT_EQ(world.hal.liveListeners(), listeners - 2);
}

TEST_F(ScannerTest, is_never_scanned_once_released) {
  world.play(11, "com.a", "A", world.usb);
  scan();
  scanner->scheduleScan();
  world.play(12, "com.b", "B", world.usb);
  const int before = scans();
  scanner.reset();
  world.pass(1);
  EXPECT_EQ(scans(), before);
  EXPECT_EQ(world.hal.liveListeners(), 0);
  EXPECT_EQ(world.main.pendingTimers(), 0);
}

}  // namespace
}  // namespace plemora
