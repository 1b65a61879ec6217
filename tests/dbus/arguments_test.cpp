#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "main/ctl/ctl_arguments.h"
#include "main/program_options.h"

namespace plemora {
namespace {

using testing::HasSubstr;
using Words = std::vector<std::string>;

CtlArguments parsed(const Words& words) {
  std::string problem;
  const auto arguments = parseCtlArguments(words, problem);
  EXPECT_TRUE(arguments) << problem;
  return arguments.value_or(CtlArguments{});
}

TEST(CtlArguments, TakesEachCommandApart) {
  EXPECT_EQ(parsed({"list"}).verb, CtlVerb::list);
  EXPECT_TRUE(parsed({"list", "--json"}).json);
  EXPECT_TRUE(parsed({"--json", "devices"}).json) << "an option may come first";
  EXPECT_TRUE(parsed({"devices", "--ids"}).ids);
  EXPECT_EQ(parsed({"mute", "Firefox"}).app, "Firefox");
  EXPECT_EQ(parsed({"status"}).app, "");
  EXPECT_EQ(parsed({"status", "mpv"}).app, "mpv");
  EXPECT_EQ(parsed({"default-output", "HDMI"}).device, "HDMI");

  const CtlArguments volume = parsed({"volume", "mpv", "-5%"});
  EXPECT_EQ(volume.app, "mpv");
  EXPECT_EQ(volume.volume, (VolumeRequest{-0.05, true})) << "no option, though it has a hyphen";

  EXPECT_EQ(parsed({"output", "mpv", "default"}).device, "");
  EXPECT_EQ(parsed({"output", "mpv", "Speakers"}).device, "Speakers");
  EXPECT_EQ(parsed({"mute", "--", "--json"}).app, "--json") << "behind -- all are names";

  EXPECT_EQ(parsed({"master"}).volume, std::nullopt);
  EXPECT_EQ(parsed({"master", "60%"}).volume, (VolumeRequest{0.6, false}));
  EXPECT_EQ(parsed({"master", "mute"}).muted, true);
  EXPECT_EQ(parsed({"master", "unmute"}).muted, false);
}

TEST(CtlArguments, HelpAndVersionNeedNothingElse) {
  EXPECT_TRUE(parsed({"--help"}).wantsHelp);
  EXPECT_EQ(parsed({"-h"}).verb, CtlVerb::help);
  EXPECT_EQ(parsed({"volume", "--help"}).verb, CtlVerb::volume);
  EXPECT_TRUE(parsed({"volume", "--help"}).wantsHelp);
  EXPECT_EQ(parsed({"help", "output"}).verb, CtlVerb::output);
  EXPECT_TRUE(parsed({"help", "output"}).wantsHelp);
  EXPECT_TRUE(parsed({"--version"}).wantsVersion);
}

TEST(CtlArguments, SaysWhatIsWrong) {
  struct Case {
    Words words;
    const char* problem;
  };
  const Case cases[] = {
      {{}, "say what to do"},
      {{"mutter"}, "there is no command \"mutter\""},
      {{"help", "mutter"}, "there is no command \"mutter\""},
      {{"mute"}, "\"mute\" takes APP, and something is missing"},
      {{"mute", "Media", "Player"}, "\"Player\" is too much"},
      {{"volume", "mpv"}, "\"volume\" takes APP VOLUME"},
      {{"volume", "mpv", "loud"}, "\"loud\" is not a volume"},
      {{"master", "loud"}, "\"loud\" is not a volume"},
      {{"output", "mpv", ""}, "the name of the device is empty"},
      {{"list", "--jsno"}, "unknown option \"--jsno\""},
      {{"list", "-j"}, "unknown option \"-j\""},
      {{"mute", "mpv", "--json"}, "\"mute\" has no option --json"},
      {{"list", "mpv"}, "\"list\" takes no operands"},
  };
  for (const Case& expected : cases) {
    std::string problem;
    EXPECT_FALSE(parseCtlArguments(expected.words, problem)) << expected.problem;
    EXPECT_THAT(problem, HasSubstr(expected.problem));
  }
}

std::string contents(const std::string& path) {
  std::ifstream file(PLEMORA_PACKAGING "/" + path);
  std::ostringstream text;
  text << file.rdbuf();
  std::string plain = text.str();
  std::erase(plain, '\\');  // manuals escape their hyphens
  return plain;
}

TEST(CtlArguments, EveryCommandIsHelpedAndCompletedAndInTheManual) {
  const std::string files[] = {"completions/plemoractl.bash", "completions/_plemoractl",
                               "completions/plemoractl.fish", "man/plemoractl.1"};
  for (const CtlCommand& command : ctlCommands()) {
    const std::string name(command.name);
    EXPECT_THAT(ctlHelp(), HasSubstr("\n  " + name + " "));
    EXPECT_THAT(ctlHelp(command), HasSubstr("usage: plemoractl " + name));
    for (const std::string& file : files) {
      const std::string manual = contents(file);
      EXPECT_TRUE(manual.find(name) != std::string::npos) << name << " is not in " << file;
    }
  }
}

TEST(ProgramOptions, TakesItsOwnAndRefusesOthers) {
  struct Case {
    Words words;
    const char* problem;
  };
  const Case cases[] = {
      {{}, nullptr},
      {{"--no-ui", "--log-levels"}, nullptr},
      {{"--setup", "--open"}, nullptr},
      {{"-demo", "{\"apps\":[]}"}, nullptr},
      {{"-demo", "--no-ui"}, nullptr},
      {{"-demo"}, "-demo needs a JSON configuration"},
      {{"-showMeters"}, "-showMeters needs its value"},
      {{"-showmeters", "no"}, "unknown option \"-showmeters\""},
      {{"--screenshots"}, "--screenshots needs the folder"},
      {{"--no-gui"}, "unknown option \"--no-gui\""},
      {{"-x", "1"}, "unknown option \"-x\""},
      {{"song.ogg"}, "unexpected argument \"song.ogg\""},
  };
  for (const Case& expected : cases) {
    std::string problem;
    const auto options = parseProgramOptions(expected.words, problem);
    EXPECT_EQ(options.has_value(), expected.problem == nullptr) << problem;
    EXPECT_THAT(problem, HasSubstr(expected.problem == nullptr ? "" : expected.problem));
  }
  std::string problem;
  EXPECT_TRUE(parseProgramOptions(Words{"-showMeters", "no", "--no-ui"}, problem)->withoutWindow);
  EXPECT_EQ(parseProgramOptions(Words{"--screenshots", "a b"}, problem)->screenshots, "a b");
  EXPECT_TRUE(parseProgramOptions(Words{"--no-ui"}, problem)->withoutWindow);
  EXPECT_TRUE(parseProgramOptions(Words{"com.quorvane.mixer://panel"}, problem)->hasPanelURL);
  // A link of a version to come starts the program all the same.
  EXPECT_FALSE(parseProgramOptions(Words{"com.quorvane.mixer://news"}, problem)->hasPanelURL);
  EXPECT_FALSE(parseProgramOptions(Words{"-demo", "--no-ui"}, problem)->withoutWindow);
}

}  // namespace
}  // namespace plemora
