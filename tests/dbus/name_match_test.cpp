#include "main/ctl/name_match.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace plemora {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::vector<Named> apps = {
    {"org.mozilla.firefox", "Firefox"}, {"firefox-esr", "Firefox ESR"},
    {"mpv", "mpv Media Player"},        {"com.example.Player", "Player"},
    {"com.example.Player2", "Player"},  {"MPV", "Another"},
};

TEST(NameMatch, AnIdWinsThenANameThenAUniqueBeginning) {
  struct Case {
    const char* typed;
    const char* id;
  };
  const Case cases[] = {
      {"org.mozilla.firefox", "org.mozilla.firefox"},  // an id
      {"ORG.MOZILLA.FIREFOX", "org.mozilla.firefox"},
      {"mpv", "mpv"},  // exact case before any case
      {"MPV", "MPV"},
      {"firefox", "org.mozilla.firefox"},  // a whole name, though others begin so too
      {"firefox-", "firefox-esr"},         // the beginning of an id
      {"anot", "MPV"},                     // the beginning of a name
      {"com.example.Player", "com.example.Player"},
      {"mpv m", "mpv"},
  };
  for (const Case& expected : cases) {
    std::string problem;
    const auto index = matchName(expected.typed, apps, "app", problem);
    ASSERT_TRUE(index) << expected.typed << ": " << problem;
    EXPECT_EQ(apps[*index].id, expected.id) << expected.typed;
  }
}

TEST(NameMatch, AnAmbiguousNameListsTheCandidatesAndNoOthers) {
  std::string problem;
  EXPECT_FALSE(matchName("player", apps, "app", problem));
  EXPECT_THAT(problem, HasSubstr("\"player\" means more than one app"));
  EXPECT_THAT(problem, HasSubstr("com.example.Player)"));
  EXPECT_THAT(problem, HasSubstr("com.example.Player2)"));
  EXPECT_THAT(problem, Not(HasSubstr("Firefox")));

  EXPECT_FALSE(matchName("fire", apps, "app", problem));
  EXPECT_THAT(problem, HasSubstr("firefox-esr"));
  EXPECT_THAT(problem, HasSubstr("org.mozilla.firefox"));
}

TEST(NameMatch, AnUnknownNameListsWhatThereIs) {
  std::string problem;
  EXPECT_FALSE(matchName("vlc", apps, "app", problem));
  EXPECT_THAT(problem, HasSubstr("no app is called \"vlc\""));
  EXPECT_THAT(problem, HasSubstr("Firefox ESR"));

  EXPECT_FALSE(matchName("", apps, "app", problem)) << "an empty name is the beginning of all";
  EXPECT_FALSE(matchName("HDMI", {}, "device", problem));
  EXPECT_THAT(problem, HasSubstr("there is no device at all"));
}

TEST(NameMatch, AMessageCarriesNoControlSequences) {
  std::string problem;
  EXPECT_FALSE(matchName("x\x1b[2J", {{"evil\x1b]0;", "Ev\nil"}}, "app", problem));
  EXPECT_THAT(problem, Not(HasSubstr("\x1b")));
  EXPECT_THAT(problem, Not(HasSubstr("Ev\nil")));
}

}  // namespace
}  // namespace plemora
