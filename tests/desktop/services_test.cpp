#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "adapters/linux/desktop/desktop_entry.h"
#include "adapters/linux/desktop/package_updates.h"
#include "adapters/linux/desktop/url_opener.h"
#include "adapters/linux/desktop/xdg_login_item.h"
#include "desktop/fake_desktop.h"
#include "support/faulty_disk.h"

namespace plemora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* loginFile = "/home/me/.config/autostart/com.quorvane.mixer.desktop";

TEST(LoginItemTest, TheEntryStartsTheProgramWhateverItsPathHolds) {
  const char* paths[] = {
      "/usr/bin/plemora",         "/opt/my apps/plemora", "/home/a\"b/plemora",
      "/home/$HOME/`id`/plemora", "/opt/100%/plemora",    "/opt/back\\slash/plemora",
      "/opt/%f/plemora",          "/opt/tab\there",       "/opt/new\nline/plemora",
      "/opt/Größe/plemora",       "/opt/a;b/plemora",     "/opt/it's/plemora",
  };
  for (const char* path : paths) {
    const auto disk = std::make_shared<FaultyDisk>();
    XdgLoginItem item("/home/me/.config/autostart", path, disk);
    EXPECT_EQ(item.enable(), std::nullopt) << path;
    disk->crash();
    const auto entry = parseDesktopEntry(disk->text(loginFile), {});
    ASSERT_TRUE(entry) << path;
    EXPECT_THAT(entry->command, ElementsAre(path));
    EXPECT_EQ(entry->tryExec, path);
    EXPECT_EQ(entry->name, "Plemora");
    EXPECT_FALSE(entry->hidden);
  }
}

TEST(LoginItemTest, KnowsWhetherTheUserHasSwitchedItOffAndOverrulesThatWhenAsked) {
  const std::string start = "[Desktop Entry]\nType=Application\nName=Plemora\nExec=/old\n";
  const struct {
    const char* what;
    std::optional<std::string> present;
    LoginItemState state;
  } cases[] = {
      {"nothing", std::nullopt, LoginItemState::absent},
      {"an entry", start, LoginItemState::on},
      {"hidden", start + "Hidden=true\n", LoginItemState::switchedOff},
      {"hidden and no more", "[Desktop Entry]\nHidden=true\n", LoginItemState::switchedOff},
      {"off for GNOME", start + "X-GNOME-Autostart-enabled=false\n", LoginItemState::switchedOff},
      {"with spaces", start + "X-GNOME-Autostart-enabled = false\n", LoginItemState::switchedOff},
      {"on for GNOME", start + "X-GNOME-Autostart-enabled=true\n", LoginItemState::on},
      {"of a group that does not count", start + "[Other]\nHidden=true\n", LoginItemState::on},
      {"without a command", "[Desktop Entry]\nType=Application\n", LoginItemState::absent},
      {"garbage", "\x01\x02", LoginItemState::absent},
  };
  for (const auto& one : cases) {
    const auto disk = std::make_shared<FaultyDisk>();
    if (one.present) {
      disk->put(loginFile, *one.present);
    }
    XdgLoginItem item("/home/me/.config/autostart", "/usr/bin/plemora", disk);
    EXPECT_EQ(item.state(), one.state) << one.what;
    EXPECT_EQ(item.enable(), std::nullopt) << one.what;
    EXPECT_EQ(item.state(), LoginItemState::on) << one.what;
    EXPECT_THAT(disk->text(loginFile), HasSubstr("/usr/bin/plemora")) << one.what;
  }
}

TEST(LoginItemTest, SaysWhatFailedAndLeavesNoHalfEntry) {
  const std::string old = "[Desktop Entry]\nType=Application\nName=Plemora\nExec=/old\n";
  int operations = 0;
  {
    const auto disk = std::make_shared<FaultyDisk>();
    disk->put(loginFile, old);
    XdgLoginItem("/home/me/.config/autostart", "/usr/bin/plemora", disk).enable();
    operations = disk->calls();
  }
  ASSERT_GE(operations, 5);
  for (int call = 1; call <= operations; ++call) {
    const auto disk = std::make_shared<FaultyDisk>();
    disk->put(loginFile, old);
    disk->failFrom(call, 1);
    XdgLoginItem item("/home/me/.config/autostart", "/usr/bin/plemora", disk);
    const auto failure = item.enable();
    const std::string text = disk->text(loginFile);
    EXPECT_TRUE(text == old || parseDesktopEntry(text, {})->command.front() == "/usr/bin/plemora")
        << call << ": " << text;
    EXPECT_EQ(disk->fileCount(), 1U) << call;
    if (text == old) {
      EXPECT_THAT(failure.value_or(""), HasSubstr("autostart")) << call;
    }
    // The next attempt succeeds.
    EXPECT_EQ(item.enable(), std::nullopt) << call;
    EXPECT_NE(disk->text(loginFile), old) << call;
  }
  EXPECT_THAT(
      XdgLoginItem("/autostart", "plemora", std::make_shared<FaultyDisk>()).enable().value_or(""),
      HasSubstr("path"));
}

TEST(UpdatesTest, SayWhoUpdatesThisCopy) {
  const TemporaryFolder folder;
  const auto& root = folder.path();
  writeFile(root / "var/lib/dpkg/info/plemora.list", "/.\n/usr\n/usr/bin/plemora\n");
  writeFile(root / "var/lib/dpkg/info/plemora-extra:amd64.list", "/usr/lib/plemora/extra\n");
  writeFile(root / "src/plemora/run", "");
  writeFile(root / "src/plemora/CMakeLists.txt", "");
  writeFile(root / "src/plemora/src/main/plemora.cpp", "");
  using Origin = InstalledCopy::Origin;
  struct Case {
    std::filesystem::path executable;
    InstalledCopy copy;
    const char* text;
  };
  const auto checkout = root / "src/plemora";
  const Case cases[] = {
      {"/usr/bin/plemora",
       {Origin::debianPackage, "plemora", "/usr/bin"},
       "install --only-upgrade plemora"},
      {"/usr/lib/plemora/extra",
       {Origin::debianPackage, "plemora-extra", "/usr/lib/plemora"},
       "plemora-extra"},
      {checkout / "build/release/bin/plemora", {Origin::sourceCheckout, {}, checkout}, "git pull"},
      {"/usr/local/bin/plemora", {Origin::unknown, {}, "/usr/local/bin"}, "/usr/local/bin"},
      {"", {}, "not known"},
  };
  for (const Case& one : cases) {
    const InstalledCopy copy = copyOf(one.executable, root);
    EXPECT_EQ(copy, one.copy) << one.executable;
    std::vector<std::string> shown;
    PackageUpdates updates(copy, "1.2.3", [&](const std::string& title, const std::string& text) {
      shown = {title, text};
    });
    EXPECT_EQ(updates.start(), std::nullopt);
    EXPECT_TRUE(shown.empty()) << "it said something unasked";
    updates.checkForUpdates();
    EXPECT_THAT(shown, ElementsAre("Plemora 1.2.3", HasSubstr(one.text)));
  }
}

const std::string soundSettings = "x-apple.systempreferences:com.apple.Sound-Settings.extension";

TEST(UrlTest, SettingsLinksLeadToTheDesktopsOwn) {
  struct Case {
    const char* desktop;
    std::set<std::string> installed;
    std::string url;
    Command started;
  };
  const std::string other =
      "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";
  const Case cases[] = {
      {"GNOME",
       {"gnome-control-center", "pavucontrol"},
       soundSettings,
       {"/bin/gnome-control-center", "sound"}},
      {"ubuntu:GNOME",
       {"gnome-control-center"},
       soundSettings,
       {"/bin/gnome-control-center", "sound"}},
      {"GNOME", {"pavucontrol"}, soundSettings, {"/bin/pavucontrol"}},
      {"KDE",
       {"systemsettings", "pavucontrol"},
       soundSettings,
       {"/bin/systemsettings", "kcm_pulseaudio"}},
      {"KDE", {"systemsettings5"}, soundSettings, {"/bin/systemsettings5", "kcm_pulseaudio"}},
      {"KDE", {"kcmshell5"}, soundSettings, {"/bin/kcmshell5", "kcm_pulseaudio"}},
      {"XFCE", {"pavucontrol", "gnome-control-center"}, soundSettings, {"/bin/pavucontrol"}},
      {"LXQt", {"pavucontrol", "pavucontrol-qt"}, soundSettings, {"/bin/pavucontrol-qt"}},
      {"LXQt", {"pavucontrol"}, soundSettings, {"/bin/pavucontrol"}},
      {"MATE", {"mate-volume-control"}, soundSettings, {"/bin/mate-volume-control"}},
      {"X-Cinnamon", {"cinnamon-settings"}, soundSettings, {"/bin/cinnamon-settings", "sound"}},
      {"Budgie:GNOME",
       {"budgie-control-center"},
       soundSettings,
       {"/bin/budgie-control-center", "sound"}},
      {"Pantheon",
       {"io.elementary.switchboard"},
       soundSettings,
       {"/bin/io.elementary.switchboard", "settings://sound"}},
      {"COSMIC", {"cosmic-settings"}, soundSettings, {"/bin/cosmic-settings", "sound"}},
      {"sway", {"pavucontrol"}, soundSettings, {"/bin/pavucontrol"}},
      {"", {"pwvucontrol"}, soundSettings, {"/bin/pwvucontrol"}},
      {"Hyprland",
       {"gnome-control-center"},
       soundSettings,
       {"env", "XDG_CURRENT_DESKTOP=GNOME", "gnome-control-center", "sound"}},
      {"GNOME", {}, soundSettings, {}},
      {"", {"xdg-open"}, soundSettings, {}},
      {"GNOME", {"gnome-control-center"}, other, {"/bin/gnome-control-center"}},
      {"LXQt", {"lxqt-config"}, other, {"/bin/lxqt-config"}},
      {"sway", {"pavucontrol"}, other, {}},
      {"KDE",
       {"xdg-open", "gio"},
       "https://example.org/",
       {"/bin/xdg-open", "https://example.org/"}},
      {"KDE", {"gio"}, "mailto:me@example.org", {"/bin/gio", "open", "mailto:me@example.org"}},
      {"KDE", {}, "https://example.org/", {}},
      {"KDE", {"xdg-open"}, "--help", {}},
      {"KDE", {"xdg-open"}, "/etc/passwd", {}},
      {"KDE", {"xdg-open"}, ":", {}},
      {"KDE", {"xdg-open"}, "", {}},
  };
  for (const Case& one : cases) {
    Command started;
    const UrlOpener opener({one.desktop,
                            [&](const std::string& program) {
                              return one.installed.contains(program) ? "/bin/" + program : "";
                            },
                            [&](const Command& command) {
                              started = command;
                              return true;
                            }});
    EXPECT_EQ(opener.open(one.url), !one.started.empty()) << one.desktop << " " << one.url;
    EXPECT_EQ(started, one.started) << one.desktop << " " << one.url;
  }
}

TEST(UrlTest, AProgramThatDoesNotStartIsPassedOver) {
  std::vector<std::string> tried;
  const UrlOpener opener({"LXQt", [](const std::string& program) { return program; },
                          [&](const Command& command) {
                            tried.push_back(command.front());
                            return tried.size() == 3;
                          }});
  EXPECT_TRUE(opener.open(soundSettings));
  EXPECT_THAT(tried, ElementsAre("pavucontrol-qt", "pavucontrol", "pavucontrol"));
}

TEST(UrlTest, TheProgramOnTheSearchPathGetsTheUrl) {
  const TemporaryFolder folder;
  const auto fifo = folder.path() / "opened";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  writeFile(folder.path() / "xdg-open", "#!/bin/sh\nprintf %s \"$1\" > " + fifo.string() + "\n");
  std::filesystem::permissions(folder.path() / "xdg-open", std::filesystem::perms::owner_all);
  const std::string before = std::getenv("PATH");
  setenv("PATH", (folder.path().string() + ":" + before).c_str(), 1);
  EXPECT_TRUE(openWithDesktop("https://example.org/a b;c"));
  setenv("PATH", before.c_str(), 1);
  EXPECT_EQ(readFile(fifo), "https://example.org/a b;c");  // waits for the program
}

}  // namespace
}  // namespace plemora
