// The panel on a desktop as people have it: pointed at, typed at, read out, heard.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "panel/desk.h"
#include "support/wait.h"

namespace plemora::rig {
namespace {

using testing::IsEmpty;

constexpr unsigned tabKey = 0xff09;
constexpr unsigned escapeKey = 0xff1b;
constexpr unsigned returnKey = 0xff0d;
constexpr unsigned upKey = 0xff52;

constexpr int emptyHeight = 313;  // title, master, "No apps ...", two devices and what is below
constexpr int oneAppHeight = 317;
constexpr int openListHeight = oneAppHeight + 2 * 32 + 4;

class PanelOnDesk : public testing::Test {
 protected:
  PanelOnDesk() { desk.startProgram(); }
  ~PanelOnDesk() override {
    if (HasFailure()) {
      std::printf("%s", desk.session().logs().c_str());
    }
  }

  void open(int height) {
    ASSERT_TRUE(desk.showsIcon());
    desk.click(desk.icon());
    ASSERT_TRUE(desk.restsUnderIcon(height));
  }
  bool isMuted(const std::string& app, bool expected) {
    return eventually(5, [&] { return desk.row(app).muted == expected; });
  }
  /// Windows of the bar of icons besides the bar.
  std::vector<QRect> menus() {
    std::vector<QRect> found;
    for (const auto window : desk.display().stack()) {
      const QRect frame = desk.display().frameOf(window);
      if (desk.display().isShown(window) && frame.width() > 80 && frame.width() < 400 &&
          frame.height() > 60 && frame.height() < 300) {
        found.push_back(frame);
      }
    }
    return found;
  }

  Desk desk;
};

TEST_F(PanelOnDesk, OpensUnderTheIconAndClosesByEveryWayOut) {
  ASSERT_TRUE(desk.showsIcon());
  EXPECT_THAT(desk.windows(), IsEmpty()) << "closed at the start";
  desk.click(desk.icon());
  ASSERT_TRUE(desk.restsUnderIcon(emptyHeight));

  desk.click(desk.icon());
  EXPECT_TRUE(desk.closes()) << "by the icon";
  open(emptyHeight);
  desk.display().pressKey(escapeKey);
  EXPECT_TRUE(desk.closes()) << "by Escape";
  open(emptyHeight);
  desk.display().click({300, 500});
  EXPECT_TRUE(desk.closes()) << "by a click elsewhere";
}

TEST_F(PanelOnDesk, WhatItsControlsDoIsHeard) {
  SinkRecorder first(desk.session(), "first");
  SinkRecorder second(desk.session(), "second");
  const auto tone = desk.play("tone", Signal::constant(0.5));
  ASSERT_TRUE(hears(first, 0.5));
  open(oneAppHeight);

  const QRect slider = desk.control("tone volume", "slider").frame;
  desk.display().drag({slider.right() - 4, slider.center().y()}, slider.center());
  ASSERT_TRUE(eventually(5, [&] { return desk.row("tone").volume < 0.55; }));
  EXPECT_NEAR(desk.row("tone").volume, 0.5, 0.02);
  const double heard = 0.5 * desk.row("tone").volume * desk.row("tone").volume;
  EXPECT_TRUE(hears(first, heard));

  desk.click(desk.control("Mute tone").frame);
  EXPECT_TRUE(hears(first, 0));
  EXPECT_TRUE(isMuted("tone", true));
  desk.click(desk.control("Unmute tone").frame);
  EXPECT_TRUE(hears(first, heard));
  EXPECT_TRUE(isMuted("tone", false));

  desk.click(desk.control("Output for tone").frame);
  ASSERT_TRUE(desk.restsUnderIcon(openListHeight));
  desk.click(desk.control("Second Speakers").frame);
  EXPECT_TRUE(hears(second, heard));
  EXPECT_TRUE(hears(first, 0));
  EXPECT_EQ(desk.row("tone").output, "second");
  desk.click(desk.control("First Speakers").frame);
  EXPECT_TRUE(hears(first, heard));
  EXPECT_TRUE(hears(second, 0));
}

TEST_F(PanelOnDesk, IsUsedByKeys) {
  const auto tone = desk.play("tone", Signal::constant(0.5));
  open(oneAppHeight);
  desk.display().pressKey('m');
  EXPECT_TRUE(eventually(5, [&] { return desk.master().find("muted") != std::string::npos; }));
  desk.display().pressKey('m');
  EXPECT_TRUE(eventually(5, [&] { return desk.master().find("muted") == std::string::npos; }));
  desk.display().pressKey(tabKey);
  desk.display().pressKey(tabKey);
  desk.display().pressKey('m');
  EXPECT_TRUE(isMuted("tone", true)) << "the icon of the app comes after the master volume";
}

TEST_F(PanelOnDesk, IsReadOutAndSteppedByAScreenReader) {
  SinkRecorder first(desk.session(), "first");
  const auto tone = desk.play("tone", Signal::constant(0.5));
  desk.plemora().must({"volume", "tone", "50%"});
  ASSERT_TRUE(hears(first, 0.125));
  open(oneAppHeight);

  struct Case {
    const char* name;
    const char* role;
  };
  const Case cases[] = {
      {"Volume", "slider"},
      {"tone volume", "slider"},
      {"Mute tone", "push button"},
      {"Output for tone", "push button"},
      {"Apps", "heading"},
      {"Output", "heading"},
      {"First Speakers", "radio button"},
      {"Second Speakers", "radio button"},
      {"AirPlay", "push button"},
      {"Sound Settings…", "push button"},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(desk.control(one.name).role, one.role) << one.name;
  }
  EXPECT_TRUE(desk.control("First Speakers").is("checked"));
  EXPECT_FALSE(desk.control("Second Speakers").is("checked"));
  EXPECT_EQ(desk.control("tone volume").description, "50 percent");
  for (const Control& control : desk.controls()) {
    EXPECT_TRUE(!control.is("showing") || desk.panel()->contains(control.frame)) << control.name;
  }

  EXPECT_TRUE(desk.act("Increase", "tone volume"));
  EXPECT_TRUE(hears(first, 0.5 * 0.5625 * 0.5625));
  EXPECT_EQ(desk.control("tone volume").description, "56 percent");
  EXPECT_TRUE(desk.act("Press", "Mute tone"));
  EXPECT_TRUE(hears(first, 0));
  EXPECT_TRUE(desk.control("Unmute tone").is("checked"));
  EXPECT_TRUE(desk.act("Press", "Second Speakers"));
  EXPECT_TRUE(eventually(5, [&] { return desk.control("Second Speakers").is("checked"); }));
}

TEST_F(PanelOnDesk, FollowsTheScreensSize) {
  open(emptyHeight);
  desk.display().setScreenSize({800, 600});
  EXPECT_TRUE(eventually(5, [&] { return desk.bar().width() == 800; }));
  EXPECT_TRUE(desk.restsUnderIcon(emptyHeight));
  desk.display().pressKey(escapeKey);
  EXPECT_TRUE(desk.closes());
  open(emptyHeight);
}

TEST_F(PanelOnDesk, HasAMenuInTheBarThatEndsIt) {
  open(emptyHeight);
  desk.click(desk.icon(), 3);
  EXPECT_TRUE(desk.closes());
  ASSERT_TRUE(eventually(5, [&] { return menus().size() == 1; }));
  EXPECT_LE(menus().front().top(), desk.bar().bottom() + 1);
  desk.display().pressKey(upKey);
  desk.display().pressKey(returnKey);
  EXPECT_EQ(desk.plemora().process().wait(5), 0) << "the last item quits";
}

}  // namespace
}  // namespace plemora::rig
