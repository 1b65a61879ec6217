#include "main/ctl/ctl_output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace plemora {
namespace {

using testing::HasSubstr;
using testing::Not;

MixerState someState() {
  MixerState state;
  state.devices = {{"spk", "Speakers", "speaker.wave.2.fill", "built-in", true},
                   {"hp", "Kopfhörer", "headphones", "bluetooth", false}};
  state.defaultDevice = "spk";
  state.volume = 0.6;
  state.connected = true;
  state.permission = "granted";
  state.apps = {{.id = "firefox", .name = "Firefox", .playing = true, .volume = 0.4},
                {.id = "mpv", .name = "音楽", .volume = 1, .muted = true, .output = "hp"},
                {.id = "x", .name = "X", .volume = 0.005, .output = "gone"}};
  return state;
}

TEST(CtlOutput, ListsAppsInColumns) {
  EXPECT_EQ(appsText(someState(), {}),
            "APP      PLAYING  VOLUME  MUTE   OUTPUT         ID\n"
            "Firefox  yes         40%  -      default        firefox\n"
            "音楽     no         100%  muted  Kopfhörer      mpv\n"
            "X        no           1%  -      gone (absent)  x\n");
  EXPECT_EQ(devicesText(someState(), {}),
            "DEVICE     DEFAULT  TRANSPORT  UID\n"
            "Speakers   *        built-in   spk\n"
            "Kopfhörer           bluetooth  hp\n");
  EXPECT_EQ(appsText({}, {}), "No app plays, nor did one lately.\n");
  EXPECT_EQ(devicesText({}, {}), "There is no output device.\n");
}

TEST(CtlOutput, JsonKeepsWhatTablesRound) {
  auto state = someState();
  state.apps[0].name = "bad \xff bytes \x1b";
  const auto apps = nlohmann::json::parse(appsJson(state));
  EXPECT_EQ(apps[0]["volume"], 0.4);
  EXPECT_EQ(apps[0]["output"], nullptr);
  EXPECT_EQ(apps[0]["playing"], true);
  EXPECT_EQ(apps[1]["output"], "hp");
  EXPECT_EQ(apps[2]["volume"], 0.005);
  EXPECT_EQ(nlohmann::json::parse(devicesJson(state))[0]["default"], true);
  EXPECT_EQ(appsJson({}), "[]\n");
}

TEST(CtlOutput, TellsTheMasterVolume) {
  auto state = someState();
  EXPECT_EQ(masterText(state), "60%  (Speakers)\n");
  state.muted = true;
  EXPECT_EQ(masterText(state), "60%, muted  (Speakers)\n");
  state.volume = std::nullopt;
  EXPECT_THAT(masterText(state), HasSubstr("no volume that can be set"));
  state.defaultDevice = "";
  EXPECT_THAT(masterText(state), HasSubstr("no default output device"));
}

TEST(CtlOutput, PointsAtWhatSilencesAnApp) {
  const AudibilityReport report{
      {{"app mute", 0, "Firefox is muted"}, {"app level", 0.16, "the volume is 40 %"}},
      0,
      "silent: app mute: Firefox is muted"};
  EXPECT_EQ(audibilityText(someState().apps[0], report, {}),
            "Firefox  (firefox)\n"
            "silent: app mute: Firefox is muted\n"
            "> app mute   x 0     Firefox is muted\n"
            "  app level  x 0.16  the volume is 40 %\n"
            "  together   = 0\n");
}

TEST(CtlOutput, SaysEachChangeInALine) {
  const MixerState before = someState();
  EXPECT_EQ(changesText(before, before), "");
  MixerState after = before;
  after.apps[0].volume = 0.45;
  after.apps[0].muted = true;
  after.apps[1].output = "";
  after.apps[2] = {.id = "new", .name = "Neu", .playing = true};
  after.defaultDevice = "hp";
  after.volume = std::nullopt;
  after.connected = false;
  EXPECT_EQ(changesText(before, after),
            "X (x): gone\n"
            "Firefox (firefox): volume 40% -> 45%, mute not muted -> muted\n"
            "音楽 (mpv): output Kopfhörer -> default\n"
            "Neu (new): new, playing yes, volume 100%, not muted, output default\n"
            "master: device Speakers -> Kopfhörer, volume 60% -> none\n"
            "plemora: sound server connected -> gone\n");
}

TEST(CtlOutput, TheLiveViewFitsTheTerminal) {
  MixerState state = someState();
  const std::vector<LevelReport> levels = {{"firefox", 0.16, 0.5, 0.08}};
  const std::string text = watchText(state, levels, {}, 24);
  EXPECT_THAT(text, HasSubstr("master 60%  (Speakers)\n"));
  EXPECT_THAT(text, HasSubstr("-21.9 dB"));
  EXPECT_THAT(text, HasSubstr("-6.0 dB"));

  for (int i = 0; i < 40; ++i) {
    state.apps.push_back({.id = "app" + std::to_string(i), .name = std::string(60, 'w')});
  }
  for (const int lines : {1, 5, 10, 24}) {
    const OutputStyle style{.width = 50};
    const std::string cut = watchText(state, levels, style, lines);
    EXPECT_LE(std::count(cut.begin(), cut.end(), '\n'), std::max(4, lines - 2)) << lines;
    EXPECT_THAT(cut, HasSubstr("more\n"));
    for (std::size_t start = 0; start < cut.size(); start = cut.find('\n', start) + 1) {
      EXPECT_LE(displayWidth(cut.substr(start, cut.find('\n', start) - start)), 50);
    }
  }
  state.connected = false;
  EXPECT_THAT(watchText(state, {}, {}, 24), HasSubstr("waiting for a sound server"));
}

TEST(CtlOutput, TheColumnsOfTheLiveViewStayWhereTheyAre) {
  const MixerState state = someState();
  const auto head = [&](double peak) {
    const std::string text = watchText(state, {{"firefox", 1, peak, peak}}, {}, 24);
    return text.substr(0, text.find("\nFirefox"));
  };
  EXPECT_EQ(head(0), head(1));
  EXPECT_EQ(head(0.00002), head(1)) << "-94.0 dB";
  EXPECT_EQ(head(0.3), watchText(state, {}, {}, 24).substr(0, head(0.3).size()));
}

}  // namespace
}  // namespace plemora
