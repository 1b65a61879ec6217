#include "skin/look/control_center_look.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/scripted_appearance.h"
#include "adapters/stage/scripted_system_info.h"
#include "support/log_keeper.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using ReleaseSource = ControlCenterLook::ReleaseSource;

class ControlCenterLookTest : public testing::Test {
 protected:
  ControlCenterLook look(ReleaseSource source = ReleaseSource::system) {
    return ControlCenterLook(defaults, system, appearance, source);
  }

  MemoryDefaults defaults;
  ScriptedSystemInfo system;
  ScriptedAppearance appearance;
  LogKeeper log;
};

TEST_F(ControlCenterLookTest, TheVersionOfTheSystemDecidesTheRelease) {
  struct Case {
    SystemVersion version;
    std::string release;
    bool isModern;
  };
  for (const Case& each : std::vector<Case>{
           {{26, 1, 0}, "26.1", false},
           {{26, 3, 9}, "26.1", false},
           {{26, 4, 0}, "26.4", true},
           {{26, 10, 2}, "26.4", true},
           {{27, 0, 0}, "27", true},
           {{28, 1, 0}, "27", true},
           {{15, 9, 9}, "26.1", false},
           {{0, 0, 0}, "26.1", false},
       }) {
    system.systemVersion = each.version;
    const ControlCenterLook made = look();
    EXPECT_EQ(made.release(), each.release);
    EXPECT_EQ(made.isModern(), each.isModern) << each.release;
    system.systemVersion = {27, 0, 0};
    EXPECT_EQ(made.release(), each.release) << "computed once";
  }
}

TEST_F(ControlCenterLookTest, TheSettingDecidesWhereTheSystemHasNoSuchGlass) {
  for (const std::string release : {"26.1", "26.4", "27"}) {
    defaults.setString("release", release);
    const auto made = look(ReleaseSource::settingElseSystem);
    EXPECT_EQ(made.release(), release);
    EXPECT_EQ(made.isModern(), release != "26.1");
    EXPECT_EQ(look().release(), "26.4") << "on a Mac the system's own counts";
  }
  EXPECT_THAT(log.records, IsEmpty());

  defaults.setString("release", "26.2");
  EXPECT_EQ(look(ReleaseSource::settingElseSystem).release(), "26.4");
  EXPECT_THAT(log.messages(LogLevel::warning), ElementsAre(HasSubstr("26.2")));

  defaults.remove("release");
  EXPECT_EQ(look(ReleaseSource::settingElseSystem).release(), "26.4");
  EXPECT_EQ(log.records.size(), 1U);
}

TEST_F(ControlCenterLookTest, TheNearestStyleWins) {
  const std::vector<BuiltInStyle> table{
      {"26.1", "oldest"}, {"26.1.light", "oldest light"}, {"26.4", "modern"}};
  struct Case {
    SystemVersion version;
    bool isDark;
    std::string expected;
  };
  for (const Case& each : std::vector<Case>{
           {{26, 1, 0}, true, "oldest"},
           {{26, 1, 0}, false, "oldest light"},
           {{26, 4, 0}, true, "modern"},
           {{26, 4, 0}, false, "modern"},
           // No entry for 27 falls to the first release, not to the one before.
           {{27, 0, 0}, false, "oldest"},
       }) {
    system.systemVersion = each.version;
    appearance.setDark(each.isDark);
    EXPECT_EQ(look().style("skinStyle", table), each.expected);
  }
  defaults.setString("skinStyle", "own");
  EXPECT_EQ(look().style("skinStyle", table), "own");
  EXPECT_EQ(look().style("detailStyle", table), "oldest");

  defaults.setString("skinStyle.light", "own light");
  const ControlCenterLook made = look();
  EXPECT_EQ(made.style("skinStyle", table), "own light");
  appearance.setDark(true);
  EXPECT_TRUE(made.isDark());
  EXPECT_EQ(made.style("skinStyle", table), "own") << "asked anew each time";

  // An empty setting is a setting: the system's own glass.
  defaults.setString("skinStyle.dark", "");
  EXPECT_EQ(made.style("skinStyle", table), "");
}

TEST_F(ControlCenterLookTest, ATableWithoutItsLastResortIsAFault) {
  const std::vector<BuiltInStyle> table{{"27", "cc"}, {"26.1.dark", "cc"}};
  appearance.setDark(false);
  EXPECT_DEATH(static_cast<void>(look().style("skinStyle", table)), "");
}

// The tables are fitted by measurement; a digest of each string notices a slip of one character.
TEST_F(ControlCenterLookTest, TheBuiltInStylesAreAsMeasured) {
  const auto digest = [](std::string_view text) {  // 64-bit FNV-1a
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char character : text) {
      hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3;
    }
    return hash;
  };
  const auto digests = [&](BuiltInStyles styles) {
    std::vector<std::pair<std::string, std::uint64_t>> result;
    for (const BuiltInStyle& style : styles) {
      result.emplace_back(style.key, digest(style.style));
    }
    return result;
  };
  EXPECT_THAT(digests(builtInSkin), ElementsAre(std::pair("26.1", 0xdecc3a9a24093650),
                                                std::pair("26.1.light", 0x9a5d282c9093c097),
                                                std::pair("27", 0xa61592a01af24db8),
                                                std::pair("26.4", 0xf83e82668efac692)));
  EXPECT_THAT(digests(builtInDetail), ElementsAre(std::pair("26.1", 0xd471dde6c516fa05),
                                                  std::pair("26.4", 0x1f50383e5446540e),
                                                  std::pair("27", 0x3bfed2dd96bb0195)));
}

TEST_F(ControlCenterLookTest, TuningIsOneNumberOfAList) {
  struct Case {
    std::string text;
    std::string name;
    std::optional<double> expected;
  };
  for (const Case& each : std::vector<Case>{
           {"rimOuter=0.3,track", "rimOuter", 0.3},
           {"rimOuter=0.3,track", "track", {}},
           {"rimOuter=0.3,track", "rim", {}},
           {"track,track=0.2", "track", 0.2},
           {"track=0.1,track=0.2", "track", 0.1},
           {"track=x,track=0.2", "track", {}},
           {"track=0.1=0.2", "track", {}},
           {"track=", "track", {}},
           {" track=0.1", "track", {}},
           {"track=-1e-1", "track", -0.1},
           {"", "track", {}},
       }) {
    defaults.setString("look", each.text);
    EXPECT_EQ(look().tuning(each.name), each.expected) << each.text;
  }
  defaults.remove("look");
  EXPECT_EQ(look().tuning("track"), std::nullopt);
}

}  // namespace
}  // namespace plemora
