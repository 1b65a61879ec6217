#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "adapters/stage/memory_preferences.h"
#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "journeys/journey.h"
#include "main/stage/launch_defaults.h"
#include "main/stage/stage_storage.h"
#include "support/defaults_contract.h"
#include "support/temporary_folder.h"

namespace plemora {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::StartsWith;

/// The program's settings as they are composed on the stage, with all that they stand on.
class SettingsOnStage : public UserDefaults {
 public:
  SettingsOnStage(StageStorage storage, const std::vector<std::string>& arguments)
      : stored_(storage.makePreferences(), "org.example.program", queue_),
        top_(arguments, stored_) {}

  std::optional<bool> boolean(const std::string& key) override { return top_.boolean(key); }
  std::optional<std::string> string(const std::string& key) override { return top_.string(key); }
  std::optional<std::string> data(const std::string& key) override { return top_.data(key); }
  void setBoolean(const std::string& key, bool value) override { top_.setBoolean(key, value); }
  void setString(const std::string& key, const std::string& value) override {
    top_.setString(key, value);
    queue_.advance(1);  // what is on the disk reads as what waits for it
  }
  void setData(const std::string& key, const std::string& bytes) override {
    top_.setData(key, bytes);
  }
  void remove(const std::string& key) override { top_.remove(key); }

 private:
  VirtualClock clock_;
  VirtualMainQueue queue_{clock_};
  PreferenceDefaults stored_;
  LaunchDefaults top_;
};

INSTANTIATE_TEST_SUITE_P(
    OnStage, DefaultsContract,
    testing::Values(DefaultsKind{"InMemory",
                                 [](const auto& arguments) {
                                   return std::make_unique<SettingsOnStage>(
                                       StageStorage::inMemory(), arguments);
                                 }},
                    DefaultsKind{"InFolder",
                                 [](const auto& arguments) {
                                   static TemporaryFolder folder;
                                   static int next = 0;
                                   return std::make_unique<SettingsOnStage>(
                                       StageStorage::inFolder(
                                           folder.path() / std::to_string(++next), "stage"),
                                       arguments);
                                 }}),
    [](const auto& test) { return test.param.name; });

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

Scenario scenarioOf(const std::string& stage, const std::string& steps) {
  return parseScenario(R"({"about": "a", "stage": {)" + stage + R"(}, "steps": [)" + steps + "]}",
                       "stored.json");
}

struct StorageTest : testing::Test {
  TemporaryFolder folder;

  void play(const std::string& stage, const std::string& steps) {
    Journey journey(scenarioOf(stage, steps), StageStorage::inFolder(folder.path(), "here"));
    EXPECT_TRUE(journey.runner.run()) << journey.runner.problem();
  }
};

TEST_F(StorageTest, ALayoutAndItsSettingsSurviveARestart) {
  const std::string replaced = R"({"control center":
      {"tiles": ["Plemora", "Plemora"], "lacks": ["Sound", "FocusModes"]}})";
  play(R"j("layout": "replaced", "defaults": {"soundReplaced": true,
            "controlsPrimedForSystem": "Version 26.4 (Build 25E246)"})j",
       R"({"start": "Plemora"}, {"wait": 5}, {"open": "Control Center"}, {"wait": 1},
          {"click": "edit button"}, {"wait": 1}, {"click": {"remove": "FocusModes"}}, {"wait": 0.5},
          {"click": "edit button"}, {"wait": 1}, {"expect": )" +
           replaced + "}");
  EXPECT_THAT(contentOf(folder.path() / "com.apple.controlcenter.plist"), StartsWith("bplist00"));
  EXPECT_THAT(contentOf(folder.path() / "ByHost/com.apple.controlcenter.bentoboxes.here.plist"),
              StartsWith("bplist00"));
  EXPECT_THAT(contentOf(folder.path() / "com.quorvane.mixer.plist"), HasSubstr("soundReplaced"));

  // What the file says of a new machine does not hold for one that there was before.
  play(R"("layout": "fresh", "defaults": {"soundReplaced": null, "didCompleteSetup": null})",
       R"({"expect": )" + replaced + R"(}, {"remember": "edited"}, {"start": "Plemora"},
          {"wait": 5},
          {"expect": {"setup": "closed", "preferences": {"as": "edited"},
                      "defaults": {"soundReplaced": true, "didCompleteSetup": true}}},
          {"quit": "Plemora"}, {"wait": 3})");
  play(
      "",
      R"({"expect": {"control center": {"tiles": ["Sound"], "lacks": ["Plemora", "FocusModes"]}}})");
}

TEST_F(StorageTest, TheBackupOfBeforeIsThereAfterARestart) {
  std::string before;
  {
    Journey fresh(scenarioOf("", R"({"wait": 1})"), StageStorage::inFolder(folder.path(), "here"));
    before = fresh.world.storedLayout();
  }
  play("", R"({"start": {"program": "Plemora", "arguments": ["--replace-sound"]}}, {"wait": 3},
              {"expect": {"printed": "ok", "backup": true}})");
  EXPECT_TRUE(
      fs::exists(folder.path() / "Application Support/Plemora/ControlCenterLayoutBackup.plist"));
  Journey again(scenarioOf("", R"({"start": {"program": "Plemora",
                                             "arguments": ["--restore-sound"]}}, {"wait": 3},
                                  {"expect": {"printed": "ok", "backup": false}})"),
                StageStorage::inFolder(folder.path(), "here"));
  EXPECT_NE(again.world.storedLayout(), before);
  EXPECT_TRUE(again.runner.run()) << again.runner.problem();
  EXPECT_EQ(again.world.storedLayout(), before);
}

TEST_F(StorageTest, AFolderThatCannotBeWrittenToIsRefused) {
  const fs::path file = folder.path() / "file";
  std::ofstream(file) << "in the way";
  EXPECT_THROW(StageWorld(scenarioOf("", R"({"wait": 1})"), StageStorage::inFolder(file, "here")),
               ScenarioError);
}

}  // namespace
}  // namespace plemora
