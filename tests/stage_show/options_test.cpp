#include <gtest/gtest.h>

#include <vector>

#include "main/stage/stage_options.h"

namespace plemora {
namespace {

using Arguments = std::vector<std::string>;

TEST(StageOptions, UnderstandsWhatItSaysItDoes) {
  std::string problem;
  const Arguments all = {"--scenario",
                         "a.json",
                         "--screenshots",
                         "out",
                         "--offscreen",
                         "--dark",
                         "--wallpaper",
                         "noisy",
                         "--scale",
                         "1.5",
                         "--speed",
                         "2",
                         "--audio",
                         "simulated",
                         "--preferences",
                         "p",
                         "--preferences-host",
                         "mac"};
  const auto options = parseStageOptions(all, problem);
  ASSERT_TRUE(options) << problem;
  EXPECT_EQ(options->scenario, "a.json");
  EXPECT_EQ(options->screenshots, "out");
  EXPECT_TRUE(options->isOffscreen);
  EXPECT_EQ(options->isDark, true);
  EXPECT_EQ(options->wallpaper, StageWallpaper::noisy);
  EXPECT_EQ(options->scale, 1.5);
  EXPECT_EQ(options->speed, 2);
  EXPECT_EQ(options->preferences, "p");
  EXPECT_EQ(options->preferencesHost, "mac");
  EXPECT_EQ(options->audio, StageOptions::Audio::simulated);

  const Arguments live = {"--audio", "pipewire", "--light"};
  EXPECT_EQ(parseStageOptions(live, problem)->audio, StageOptions::Audio::pipewire);
  EXPECT_EQ(parseStageOptions(live, problem)->isDark, false);
  EXPECT_EQ(parseStageOptions(Arguments{"--tour", "d"}, problem)->tour, "d");
  EXPECT_TRUE(parseStageOptions(Arguments{"-h"}, problem)->wantsHelp);
  EXPECT_TRUE(parseStageOptions(Arguments{}, problem));
}

TEST(StageOptions, SaysWhatIsWrongAndWhatIsAllowed) {
  const struct {
    Arguments arguments;
    const char* problem;
  } cases[] = {
      {{"--loud"}, "unknown option \"--loud\""},
      {{"--scenario"}, "--scenario needs the file of a scenario after it"},
      {{"--skin", "d", "--tour", "d"}, "--skin makes pictures of its own"},
      {{"--skin", "d", "--preferences", "d"}, "--skin sets up stages of its own"},
      {{"--preferences"}, "--preferences needs a folder of preferences after it"},
      {{"--preferences-host", "mac"}, "--preferences-host names files in the folder of"},
      {{"--audio", "loud"}, "--audio needs \"simulated\" or \"pipewire\" after it"},
      {{"--wallpaper", "sea"}, "--wallpaper needs one of these names after it: photograph"},
      {{"--scale", "0"}, "--scale needs a number from 1 to 4 after it"},
      {{"--scale", "nan"}, "--scale needs a number from 1 to 4 after it"},
      {{"--speed", "21"}, "--speed needs a number from 0.05 to 20 after it"},
      {{"--tour", "d", "--scenario", "s"}, "--tour is a scenario of its own"},
      {{"--screenshots", "d"}, "--screenshots needs a --scenario"},
      {{"--offscreen"}, "--offscreen shows nothing by itself"},
      {{"--tour", "d", "--audio", "pipewire"}, "--audio pipewire needs real time"},
  };
  for (const auto& wrong : cases) {
    std::string problem;
    EXPECT_FALSE(parseStageOptions(wrong.arguments, problem)) << wrong.problem;
    EXPECT_EQ(problem.find(wrong.problem), 0u) << problem;
  }
}

}  // namespace
}  // namespace plemora
