// The icon and its panel with every kind of bar, window manager and compositing manager.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "panel/desk.h"
#include "support/wait.h"

namespace plemora::rig {
namespace {

constexpr int height = 313;

class TrayHosts : public testing::TestWithParam<DeskSetup> {};

TEST_P(TrayHosts, IconWorksAndComesBackWithTheBar) {
  Desk desk(GetParam());
  desk.startProgram();
  const auto showsMaster = [&](const std::string& text) {
    return eventually(5, [&] { return desk.master().find(text) != std::string::npos; });
  };
  for (const char* round : {"at first", "after the bar's restart"}) {
    ASSERT_TRUE(desk.showsIcon()) << round;
    desk.click(desk.icon());
    EXPECT_TRUE(desk.restsUnderIcon(height)) << round;
    desk.click(desk.icon());
    EXPECT_TRUE(desk.closes()) << round;

    desk.plemora().must({"master", "50%"});
    desk.click(desk.icon(), 5);
    EXPECT_TRUE(showsMaster("44%")) << round << ": " << desk.master();
    desk.click(desk.icon(), 4);
    EXPECT_TRUE(showsMaster("50%")) << round << ": " << desk.master();
    desk.click(desk.icon(), 2);
    EXPECT_TRUE(showsMaster("muted")) << round << ": " << desk.master();
    desk.click(desk.icon(), 2);
    EXPECT_TRUE(eventually(5, [&] { return desk.master().find("muted") == std::string::npos; }))
        << round;

    desk.stopTray();
    desk.startTray();
  }
  if (HasFailure()) {
    std::printf("%s", desk.session().logs().c_str());
  }
}

const DeskSetup setups[] = {
    {"LxqtPanel", TrayHost::lxqtPanel},
    {"Trayer", TrayHost::trayer},
    {"LxqtPanelNotComposited", TrayHost::lxqtPanel, true, false},
    {"TrayerAlone", TrayHost::trayer, false, false},
};

INSTANTIATE_TEST_SUITE_P(, TrayHosts, testing::ValuesIn(setups),
                         [](const auto& setup) { return setup.param.name; });

}  // namespace
}  // namespace plemora::rig
