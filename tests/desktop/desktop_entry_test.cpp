#include "adapters/linux/desktop/desktop_entry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "adapters/linux/desktop/control_group.h"
#include "adapters/linux/desktop/process_table.h"
#include "fake_desktop.h"

namespace plemora {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(DesktopEntry, NameFollowsTheLocale) {
  const std::string text =
      "# a comment\n[Desktop Entry]\nType=Application\nName=Plain\nName[de]=Deutsch\n"
      "Name[sr@latin]=Latinica\nName[pt_BR]=Brasil\n[Desktop Action x]\nName=Action\n";
  const std::pair<const char*, const char*> cases[] = {
      {"de_AT.UTF-8", "Deutsch"}, {"sr_RS@latin", "Latinica"}, {"pt_BR", "Brasil"},
      {"pt_PT", "Plain"},         {"C.UTF-8", "Plain"},        {"", "Plain"},
  };
  for (const auto& [locale, name] : cases) {
    EXPECT_EQ(parseDesktopEntry(text, localeCandidates(locale))->name, name) << locale;
  }
}

TEST(DesktopEntry, ReadsItsKeysWithTheirEscapes) {
  const auto entry = parseDesktopEntry(
      "[Desktop Entry]\r\nType=Application\r\nName = Two\\sWords \r\nExec=a\\\\sb\r\n"
      "Categories=Audio;Odd\\;One;;\r\nNoDisplay=true\r\nStartupWMClass=W\r\nX-Flatpak=org.x\r\n",
      {});
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->name, "Two Words");
  EXPECT_THAT(entry->command, ElementsAre("a\\sb"));
  EXPECT_THAT(entry->categories, ElementsAre("Audio", "Odd;One"));
  EXPECT_TRUE(entry->noDisplay);
  EXPECT_EQ(entry->startupWMClass, "W");
  EXPECT_EQ(entry->flatpakId, "org.x");

  EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Link\nName=x\n", {}));
  EXPECT_FALSE(parseDesktopEntry("", {}));
  EXPECT_FALSE(parseDesktopEntry("Type=Application\nName=outside\n", {}));
}

TEST(DesktopEntry, SplitsCommandsAsLaunchersDo) {
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"mpv --player-operation-mode=pseudo-gui -- %U",
       {"mpv", "--player-operation-mode=pseudo-gui", "--"}},
      {R"("/opt/a b/c" "x\"y\\z" 100%% --file=%f)", {"/opt/a b/c", R"(x"y\z)", "100%", "--file="}},
      {"a \"\" b", {"a", "", "b"}},
      {"  \t", {}},
      {"unfinished \"quote", {"unfinished", "quote"}},
      {"ends with %", {"ends", "with", "%"}},
  };
  for (const auto& [command, words] : cases) {
    EXPECT_EQ(splitCommand(command), words) << command;
  }
}

TEST(ControlGroup, TellsWhatTheUnitSays) {
  using Kind = ControlGroupApp::Kind;
  struct Case {
    const char* path;
    Kind kind;
    std::string first;
  };
  const Case cases[] = {
      {"/user.slice/app.slice/app-flatpak-org.x.Y-123.scope", Kind::flatpak, "org.x.Y"},
      {"/a/app-flatpak-com.a\\x2db.C-123.scope", Kind::flatpak, "com.a-b.C"},
      {"/a/snap.vlc.vlc-0a1b2c3d-0000-1111-2222-333344445555.scope/child", Kind::snap, "vlc"},
      {"/a/app-org.x.Y@autostart.service", Kind::unit, "org.x.Y"},
      {"/a/vte-spawn-0.scope", Kind::none, ""},
      {"/user.slice/session-2.scope", Kind::none, ""},
      {"/a/pipewire.service", Kind::none, ""},
      {"/a/app-.scope", Kind::unit, ""},
      {"/a/snap.service", Kind::none, ""},
      {"", Kind::none, ""},
  };
  for (const Case& test : cases) {
    const ControlGroupApp app = controlGroupApp(test.path);
    EXPECT_EQ(app.kind, test.kind) << test.path;
    EXPECT_EQ(app.ids.empty() ? "" : app.ids[0], test.first) << test.path;
  }
  EXPECT_THAT(controlGroupApp("/app-gnome-a-b-77.scope").ids,
              ElementsAre("gnome-a-b", "a-b", "gnome-a", "a", "gnome"));
}

TEST(ProcessTable, ReadsWhatIsThereAndNothingElse) {
  FakeDesktop desktop;
  const ProcessTable table(desktop.expand("@/proc"));
  EXPECT_FALSE(table.status(7));
  EXPECT_THAT(table.arguments(7), IsEmpty());
  EXPECT_EQ(table.executable(7), "");

  desktop.start({7, 3, "@/usr/bin/player", {"player", "", "a b"}});
  const std::string stat = desktop.expand("@/proc/7/stat");
  writeFile(stat, "7 (odd) S (name) S 3 7 7 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 4711 0 0\n");
  EXPECT_EQ(table.status(7), (ProcessStatus{3, 4711, "odd) S (name"}));
  EXPECT_THAT(table.arguments(7), ElementsAre("player", "", "a b"));
  for (const char* broken : {"", "7 (x", "7 (x) S", "7 (x) S 3 0 0", "7 (x) Z 3 0 0"}) {
    writeFile(stat, broken);
    EXPECT_FALSE(table.status(7)) << broken;
  }
}

}  // namespace

}  // namespace plemora
