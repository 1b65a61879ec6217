#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <vector>

#include "journeys/journey.h"
#include "support/temporary_folder.h"

namespace plemora {
namespace {

std::vector<std::string> scenarioNames() {
  std::vector<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(PLEMORA_SCENARIOS)) {
    if (file.path().extension() == ".json") {
      names.push_back(file.path().stem().string());
    }
  }
  std::ranges::sort(names);
  return names;
}

struct JourneysTest : testing::TestWithParam<std::string> {};

TEST_P(JourneysTest, GoesAsItShould) {
  const Scenario scenario =
      loadScenario(std::string(PLEMORA_SCENARIOS) + "/" + GetParam() + ".json");
  const TemporaryFolder folder;
  Journey onDisk(scenario, StageStorage::inFolder(folder.path(), "here"));
  EXPECT_TRUE(onDisk.runner.run()) << "with files: " << onDisk.runner.problem();
  Journey journey(scenario);
  EXPECT_TRUE(journey.runner.run()) << journey.runner.problem();
  EXPECT_THAT(journey.overlay.faults(), testing::IsEmpty());
  if (GetParam().starts_with("module")) {
    EXPECT_GT(journey.overlay.framesShown(), 60);
  }
  std::vector<std::string> names = journey.pictures;
  std::ranges::sort(names);
  EXPECT_EQ(std::ranges::adjacent_find(names), names.end()) << "a picture would replace another";
}

std::string testNameOf(const testing::TestParamInfo<std::string>& info) {
  std::string name;
  bool isFirst = true;
  for (const char c : info.param) {
    if (c == '-') {
      isFirst = true;
    } else {
      name += isFirst ? static_cast<char>(std::toupper(c)) : c;
      isFirst = false;
    }
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, JourneysTest, testing::ValuesIn(scenarioNames()), testNameOf);

TEST(ModuleJourneysTest, GoTheSameOnEveryReleaseInEveryAppearanceAtEveryScale) {
  for (const char* name : {"module", "module-world"}) {
    for (const SystemVersion& version :
         {SystemVersion{26, 1, 0}, SystemVersion{26, 4, 0}, SystemVersion{27, 0, 0}}) {
      for (const bool isDark : {true, false}) {
        for (const double scale : {1.0, 2.0}) {
          SCOPED_TRACE(std::string(name) + " on " + std::to_string(version.major) + "." +
                       std::to_string(version.minor) + (isDark ? " dark " : " light ") +
                       std::to_string(scale));
          Scenario scenario = loadScenario(std::string(PLEMORA_SCENARIOS) + "/" + name + ".json");
          scenario.stage.isDark = isDark;
          scenario.stage.screens = {ScenarioScreen{.scale = scale}};
          Journey journey(scenario);
          journey.world.desktop.systemInfo.systemVersion = version;
          EXPECT_TRUE(journey.runner.run()) << journey.runner.problem();
          EXPECT_THAT(journey.overlay.faults(), testing::IsEmpty());
        }
      }
    }
  }
}

}  // namespace
}  // namespace plemora
