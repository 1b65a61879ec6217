#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "adapters/linux/desktop/linux_workspace.h"
#include "fake_desktop.h"

namespace plemora {

namespace {

void install(FakeDesktop& desktop) {
  const std::string script = "#!/bin/sh\n";
  for (const char* program :
       {"mpv", "bash", "dash", "python3.11", "gnome-shell", "nautilus", "xfce4-panel", "vim",
        "pw-cat", "ffplay", "java", "snap", "flatpak", "bwrap", "systemd"}) {
    desktop.addProgram(std::string("@/usr/bin/") + program);
  }
  desktop.addLink("@/usr/bin/pw-play", "@/usr/bin/pw-cat");
  desktop.addLink("@/usr/bin/python3", "@/usr/bin/python3.11");
  desktop.addLink("@/usr/bin/sh", "@/usr/bin/dash");
  desktop.addEntry("mpv", "Name=mpv\nName[de]=mpv Spieler\nIcon=mpv\nExec=mpv -- %U");
  desktop.addEntry("python3.11", "Name=Python\nExec=@/usr/bin/python3.11\nNoDisplay=true");
  desktop.addEntry("org.gnome.Shell", "Name=Shell\nExec=gnome-shell\nNoDisplay=true");
  desktop.addEntry("org.gnome.Nautilus",
                   "Name=Files\nExec=nautilus %U\nCategories=GNOME;FileManager;");
  desktop.addEntry("panel-preferences", "Name=Panel\nExec=xfce4-panel --preferences");
  desktop.addEntry("vim", "Name=Vim\nExec=vim %F\nTerminal=true");

  desktop.addProgram("@/usr/libexec/gnome-terminal-server");
  desktop.addProgram("@/usr/bin/gnome-terminal");
  desktop.addEntry("org.gnome.Terminal",
                   "Name=Terminal\nExec=gnome-terminal\nCategories=System;TerminalEmulator;");

  // A browser behind a wrapper, with hidden entries and web apps of the same program.
  desktop.addProgram("@/opt/google/chrome/google-chrome", script + "exec \"$HERE/chrome\"\n");
  desktop.addLink("@/usr/bin/google-chrome-stable", "@/opt/google/chrome/google-chrome");
  for (const char* program : {"chrome", "chrome_crashpad_handler"}) {
    desktop.addProgram(std::string("@/opt/google/chrome/") + program);
  }
  desktop.addEntry("google-chrome", "Name=Chrome\nExec=@/usr/bin/google-chrome-stable %U");
  desktop.addEntry("com.google.Chrome",
                   "Name=Chrome\nExec=@/usr/bin/google-chrome-stable %U\nNoDisplay=true");
  desktop.addEntry("chrome-webapp-Default",
                   "Name=Web app\nExec=@/opt/google/chrome/google-chrome --app-id=webapp");

  desktop.addProgram("@/usr/bin/firefox", script + "exec @/usr/lib/firefox/firefox \"$@\"\n");
  desktop.addProgram("@/usr/lib/firefox/firefox");
  desktop.addProgram("@/usr/lib/firefox/plugin-container");
  desktop.addEntry("firefox", "Name=Firefox\nExec=firefox %u");

  desktop.addProgram("@/usr/bin/frontend");
  desktop.addEntry("org.example.Frontend", "Name=Frontend\nExec=frontend");
  desktop.addProgram("@/usr/bin/radio", "#!/usr/bin/python3\n");
  desktop.addEntry("org.example.Radio", "Name=Radio\nExec=radio %U");
  desktop.addProgram("@/opt/jukebox/jukebox.jar");
  desktop.addEntry("jukebox", "Name=Jukebox\nExec=java -jar @/opt/jukebox/jukebox.jar");

  const std::string exports = "@/var/lib/flatpak/applications";
  desktop.addEntry(
      "org.videolan.VLC",
      "Name=VLC\nExec=@/usr/bin/flatpak run org.videolan.VLC\nX-Flatpak=org.videolan.VLC", exports);
  desktop.addEntry("spotify_spotify",
                   "Name=Spotify\nExec=@/usr/bin/snap\nX-SnapInstanceName=spotify");

  desktop.addProgram("@/usr/bin/siren");
  desktop.addEntry("siren", "Name=Siren\nExec=sh -c \"exec siren\"");
  desktop.addEntry("ffplay", "Name=Not this one\nExec=frontend --play");

  desktop.addProgram("@/usr/local/bin/player");
  desktop.addProgram("@/usr/bin/player");
  desktop.addProgram("@/home/user/tools/player");
  desktop.addProgram("@/home/user/games/maze/maze");
  desktop.addProgram("@/home/user/games/maze/audio-helper");
  desktop.addProgram("@/home/user/play.sh", script);
  desktop.addProgram("@/home/user/tunes.py", "");
  desktop.addProgram("@/home/user/other/tunes.py", "");
}

const std::string launchedBy(const std::string& id) {
  return "GIO_LAUNCHED_DESKTOP_FILE=@/usr/share/applications/" + id + ".desktop";
}

struct Case {
  std::string what;
  std::vector<FakeProcess> processes;
  std::int32_t pid;
  std::string id;
  std::int32_t main;
};

const std::string chrome = "@/opt/google/chrome/chrome";
const std::string slice = "/user.slice/user-1000.slice/user@1000.service/app.slice/";
const std::string terminal = "@/usr/libexec/gnome-terminal-server";
const std::string tab = slice + "app-org.gnome.Terminal.slice/vte-spawn-5b1c.scope";

std::vector<Case> sandboxCases() {
  return {
      {"Flatpak by its scope, also without an entry",
       {{10, 1, "@/usr/bin/bwrap", {}, slice + "app-flatpak-org.example.Tune-77.scope"}},
       10,
       "org.example.Tune",
       10},
      {"Flatpak: the player inside belongs to the outermost process of the sandbox",
       {{10, 1, "@/usr/bin/bwrap", {}, slice + "app-flatpak-org.videolan.VLC-77.scope"},
        {11,
         10,
         "/app/bin/vlc",
         {},
         slice + "app-flatpak-org.videolan.VLC-77.scope",
         {},
         "org.videolan.VLC"}},
       11,
       "org.videolan.VLC",
       10},
      {"Flatpak by its own word when there is no scope",
       {{10, 1, "@/usr/bin/mpv", {"mpv"}, "/", {}, "org.videolan.VLC"}},
       10,
       "org.videolan.VLC",
       10},
      {"Flatpak started by another app stays its own",
       {{10, 1, "@/usr/bin/frontend", {}},
        {11, 10, "@/usr/bin/bwrap", {}, slice + "app-flatpak-org.videolan.VLC-77.scope"}},
       11,
       "org.videolan.VLC",
       11},
      {"Snap by its scope",
       {{10,
         1,
         "/snap/spotify/80/usr/share/spotify/spotify",
         {},
         slice + "snap.spotify.spotify-0a1b2c3d-0000-1111-2222-333344445555.scope"}},
       10,
       "spotify_spotify",
       10},
      {"Snap by its scope of the older form",
       {{10,
         1,
         "/snap/spotify/80/usr/share/spotify/spotify",
         {},
         slice + "snap.spotify.spotify.0a1b2c3d-0000-1111-2222-333344445555.scope"}},
       10,
       "spotify_spotify",
       10},
      {"Snap as a service, without an entry",
       {{10, 1, "/snap/mopidy/1/bin/mopidy", {}, "/system.slice/snap.mopidy.daemon.service"}},
       10,
       "mopidy_daemon",
       10},
  };
}

std::vector<Case> launchCases() {
  return {
      {"launched by an entry: that process itself",
       {{10,
         1,
         "@/usr/bin/bash",
         {"bash", "-c", "x"},
         "/",
         {launchedBy("org.example.Frontend"), "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}}},
       10,
       "org.example.Frontend",
       10},
      {"launched by an entry: what came of it, though its launcher is gone",
       {{12,
         1,
         "@/usr/bin/ffplay",
         {},
         "/",
         {launchedBy("org.example.Frontend"), "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}}},
       12,
       "org.example.Frontend",
       12},
      {"launched by an entry: a part that cut itself loose leads to what was launched",
       {{10,
         1,
         "@/usr/bin/frontend",
         {},
         "/",
         {launchedBy("org.example.Frontend"), "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}},
        {12,
         1,
         "@/usr/bin/ffplay",
         {},
         "/",
         {launchedBy("org.example.Frontend"), "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}}},
       12,
       "org.example.Frontend",
       10},
      {"the environment of a terminal says nothing of what runs in it",
       {{10,
         1,
         "@/usr/bin/mpv",
         {},
         "/",
         {launchedBy("org.gnome.Terminal"), "GIO_LAUNCHED_DESKTOP_FILE_PID=9"}}},
       10,
       "mpv",
       10},
      {"nor does that of a desktop shell",
       {{10,
         1,
         "@/usr/bin/mpv",
         {},
         "/",
         {launchedBy("org.gnome.Shell"), "GIO_LAUNCHED_DESKTOP_FILE_PID=9"}}},
       10,
       "mpv",
       10},
      {"an entry that is not installed says nothing",
       {{10,
         1,
         "@/usr/bin/mpv",
         {},
         "/",
         {"GIO_LAUNCHED_DESKTOP_FILE=/gone/elsewhere.desktop",
          "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}}},
       10,
       "mpv",
       10},
      {"scope with a launcher's name and an escaped id",
       {{10, 1, "@/usr/bin/ffplay", {}, slice + "app-gnome-org.example.Frontend-1234.scope"}},
       10,
       "org.example.Frontend",
       10},
      {"service of an escaped id",
       {{10, 1, "@/usr/bin/ffplay", {}, slice + "app-google\\x2dchrome@0a1b2c3d.service"}},
       10,
       "google-chrome",
       10},
      {"scope whose random part and id have dashes that nobody escaped",
       {{10, 1, "@/usr/bin/ffplay", {}, slice + "app-google-chrome-0a1b-2c3d.scope"}},
       10,
       "google-chrome",
       10},
      {"activated over the bus",
       {{10, 1, "@/usr/bin/ffplay", {}, slice + "dbus-:1.2-org.example.Radio@0.service"}},
       10,
       "org.example.Radio",
       10},
      {"the scope of a terminal says nothing of what runs in it",
       {{10, 1, "@/usr/bin/mpv", {}, slice + "app-gnome-org.gnome.Terminal-12.scope"}},
       10,
       "mpv",
       10},
      {"a tab inside of an app's scope is a terminal's",
       {{10, 1, "@/usr/bin/mpv", {}, slice + "app-org.example.Frontend-3.scope/vte-spawn-1.scope"}},
       10,
       "mpv",
       10},
  };
}

std::vector<Case> parentCases() {
  const std::vector<FakeProcess> shellTree = {
      {5, 1, terminal, {}, slice + "gnome-terminal.service"},
      {6, 5, "@/usr/bin/bash", {"bash"}, tab}};
  const auto inTerminal = [&shellTree](std::vector<FakeProcess> more) {
    more.insert(more.begin(), shellTree.begin(), shellTree.end());
    return more;
  };
  return {
      {"a player inside another program is that program",
       {{10, 1, "@/usr/bin/frontend", {}}, {11, 10, "@/usr/bin/mpv", {"mpv", "--idle"}}},
       11,
       "org.example.Frontend",
       10},
      {"also through a shell, and for what the player starts",
       {{10, 1, "@/usr/bin/frontend", {}},
        {11, 10, "@/usr/bin/dash", {"sh", "-c", "mpv x"}},
        {12, 11, "@/usr/bin/mpv", {}},
        {13, 12, "@/usr/bin/ffplay", {}}},
       13,
       "org.example.Frontend",
       10},
      {"a player in a terminal is itself",
       inTerminal({{10, 6, "@/usr/bin/mpv", {"mpv", "song"}, tab}}), 10, "mpv", 10},
      {"a player of an editor in a terminal is the editor's",
       inTerminal({{10, 6, "@/usr/bin/vim", {}, tab}, {11, 10, "@/usr/bin/mpv", {}, tab}}), 11,
       "vim", 10},
      {"a terminal that rings its bell is an app",
       {{5, 1, "@/usr/bin/gnome-terminal", {}, slice + "app-gnome-org.gnome.Terminal-12.scope"}},
       5,
       "org.gnome.Terminal",
       5},
      {"what a file manager opens is itself",
       {{10, 1, "@/usr/bin/nautilus", {}}, {11, 10, "@/usr/bin/mpv", {}}},
       11,
       "mpv",
       11},
      {"what a desktop shell opens is itself",
       {{10, 1, "@/usr/bin/gnome-shell", {}}, {11, 10, "@/usr/bin/mpv", {}}},
       11,
       "mpv",
       11},
      {"what a panel opens is itself, though its preferences are an app",
       {{10, 1, "@/usr/bin/xfce4-panel", {}}, {11, 10, "@/usr/bin/mpv", {}}},
       11,
       "mpv",
       11},
      {"what a script without an entry plays is the player's",
       inTerminal({{10, 6, "@/usr/bin/bash", {"bash", "play.sh"}, tab},
                   {11, 10, "@/usr/bin/mpv", {}, tab}}),
       11, "mpv", 11},
      {"an app launched by another app is its own",
       {{10, 1, "@/usr/bin/frontend", {}},
        {11,
         10,
         "@/usr/bin/mpv",
         {},
         "/",
         {launchedBy("mpv"), "GIO_LAUNCHED_DESKTOP_FILE_PID=11"}}},
       11,
       "mpv",
       11},
  };
}

std::vector<Case> browserCases() {
  return {
      {"renderers lead to the outermost process",
       {{10, 1, chrome, {}, slice + "app-gnome-google\\x2dchrome-10.scope"},
        {11, 10, chrome, {"chrome", "--type=zygote"}, slice + "app-com.google.Chrome-10.scope"},
        {12, 11, chrome, {"chrome", "--type=renderer"}, slice + "app-com.google.Chrome-10.scope"}},
       12,
       "google-chrome",
       10},
      {"a helper of another name that cut itself loose leads there too",
       {{12, 1, "@/opt/google/chrome/chrome_crashpad_handler", {}, "/", {}, "", 200},
        {40, 1, chrome, {}, "/", {}, "", 100},
        {41, 40, chrome, {"chrome", "--type=renderer"}, "/", {}, "", 110}},
       12,
       "google-chrome",
       40},
      {"a web app is the browser, whichever was launched first",
       {{10,
         1,
         chrome,
         {},
         "/",
         {launchedBy("chrome-webapp-Default"), "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}}},
       10,
       "google-chrome",
       10},
      {"behind a wrapper script in a common folder",
       {{10, 1, "@/usr/lib/firefox/firefox", {"firefox"}},
        {11, 10, "@/usr/lib/firefox/plugin-container", {}}},
       11,
       "firefox",
       10},
      {"the wrapper itself",
       {{10, 1, "@/usr/bin/dash", {"/bin/sh", "@/usr/bin/firefox"}}},
       10,
       "firefox",
       10},
  };
}

std::vector<Case> programCases() {
  return {
      {"a script with an entry, run by its interpreter",
       {{10, 1, "@/usr/bin/python3.11", {"/usr/bin/python3", "-u", "@/usr/bin/radio"}}},
       10,
       "org.example.Radio",
       10},
      {"a jar with an entry",
       {{10, 1, "@/usr/bin/java", {"java", "-Xmx1g", "-jar", "@/opt/jukebox/jukebox.jar"}}},
       10,
       "jukebox",
       10},
      {"a script without one, found from the working folder",
       {{10, 1, "@/usr/bin/python3.11", {"python3", "tunes.py"}}},
       10,
       "@/home/user/tunes.py",
       10},
      {"another of the same name",
       {{10, 1, "@/usr/bin/python3.11", {"python3", "other/tunes.py"}}},
       10,
       "@/home/user/other/tunes.py",
       10},
      {"a class and a module",
       {{10, 1, "@/usr/bin/java", {"java", "-cp", "x.jar", "org.example.Horn"}}},
       10,
       "java:org.example.Horn",
       10},
      {"a module",
       {{10, 1, "@/usr/bin/python3.11", {"python3", "-m", "horn"}}},
       10,
       "python:horn",
       10},
      {"a worker of a script belongs to it",
       {{10, 1, "@/usr/bin/python3.11", {"python3", "tunes.py"}},
        {11, 10, "@/usr/bin/python3.11", {"python3", "-c", "spawn_main()"}}},
       11,
       "@/home/user/tunes.py",
       10},
      {"Windows programs by their path",
       {{10, 1, "@/usr/bin/wine64-preloader", {"C:\\Games\\Maze\\maze.exe"}}},
       10,
       "wine:c:\\games\\maze\\maze.exe",
       10},
      {"a link to a program of many names, called by the link",
       {{10, 1, "@/usr/bin/pw-cat", {"pw-play", "x.wav"}}},
       10,
       "pw-play",
       10},
      {"the same program by its own name",
       {{10, 1, "@/usr/bin/pw-cat", {"pw-cat"}}},
       10,
       "pw-cat",
       10},
      {"the first of two programs of one name keeps the name",
       {{10, 1, "@/usr/local/bin/player", {"player"}}},
       10,
       "player",
       10},
      {"the second has its path",
       {{10, 1, "@/usr/bin/player", {"player"}}},
       10,
       "@/usr/bin/player",
       10},
      {"a program of the user has its path",
       {{10, 1, "@/home/user/tools/player", {"./player"}}},
       10,
       "@/home/user/tools/player",
       10},
      {"a player called like an app that it is not",
       {{10, 1, "@/home/user/tools/mpv", {"mpv"}}},
       10,
       "@/home/user/tools/mpv",
       10},
      {"an entry whose command is a line for the shell",
       {{10, 1, "@/usr/bin/siren", {"siren"}}},
       10,
       "siren",
       10},
      {"an entry of the program's name that starts another one",
       {{10, 1, "@/usr/bin/ffplay", {"ffplay"}}},
       10,
       "@/usr/bin/ffplay#program",
       10},
      {"replaced by an update while it runs",
       {{10, 1, "@/usr/bin/mpv (deleted)", {"mpv"}}},
       10,
       "mpv",
       10},
      {"helpers in the folder of a program without an entry",
       {{10, 1, "@/home/user/games/maze/maze", {}},
        {11, 10, "@/home/user/games/maze/audio-helper", {}}},
       11,
       "@/home/user/games/maze/maze",
       10},
      {"an AppImage under the path of its file",
       {{10,
         1,
         "@/tmp/.mount_TuneX1/usr/bin/tune",
         {},
         "/",
         {"APPDIR=@/tmp/.mount_TuneX1", "APPIMAGE=@/home/user/Tune.AppImage"}}},
       10,
       "@/home/user/Tune.AppImage",
       10},
      {"a process of somebody else, of which only the name can be seen",
       {{10, 1, "", {"mpv"}}},
       10,
       "mpv",
       10},
  };
}

void check(const std::vector<Case>& cases) {
  for (const Case& test : cases) {
    SCOPED_TRACE(test.what);
    FakeDesktop desktop;
    install(desktop);
    for (const FakeProcess& process : test.processes) {
      desktop.start(process);
    }
    LinuxWorkspace workspace(desktop.paths(), std::make_shared<ClientDirectory>());

    EXPECT_EQ(workspace.responsiblePid(test.pid), test.main);
    const auto main = workspace.runningApplication(test.main);
    ASSERT_TRUE(main);
    EXPECT_EQ(main->bundleID, desktop.expand(test.id));
    EXPECT_EQ(main->activationPolicy, ActivationPolicy::regular);
    if (test.main != test.pid) {
      const auto helper = workspace.runningApplication(test.pid);
      ASSERT_TRUE(helper);
      EXPECT_NE(helper->activationPolicy, ActivationPolicy::regular);
      EXPECT_EQ(helper->bundleID, main->bundleID);
    }
  }
}

TEST(WorkspaceRules, Sandboxes) {
  check(sandboxCases());
}
TEST(WorkspaceRules, LaunchersAndUnits) {
  check(launchCases());
}
TEST(WorkspaceRules, ParentChains) {
  check(parentCases());
}
TEST(WorkspaceRules, Browsers) {
  check(browserCases());
}
TEST(WorkspaceRules, Programs) {
  check(programCases());
}

TEST(WorkspaceRules, EveryProcessOfATreeAgreesInWhateverOrderItIsAsked) {
  const std::vector<FakeProcess> tree = {
      {10, 1, chrome, {}},
      {11, 10, chrome, {"chrome", "--type=zygote"}},
      {12, 11, chrome, {"chrome", "--type=utility"}},
      {13, 10, "@/opt/google/chrome/chrome_crashpad_handler", {}},
      {14, 1, "@/opt/google/chrome/chrome_crashpad_handler", {}}};
  std::vector<std::int32_t> order = {10, 11, 12, 13, 14};
  FakeDesktop desktop;
  install(desktop);
  for (const FakeProcess& process : tree) {
    desktop.start(process);
  }
  do {
    LinuxWorkspace workspace(desktop.paths(), std::make_shared<ClientDirectory>());
    for (const std::int32_t pid : order) {
      EXPECT_EQ(workspace.responsiblePid(pid), 10) << pid;
    }
    EXPECT_THAT(workspace.runningApplications(), testing::SizeIs(1));
  } while (std::next_permutation(order.begin(), order.end()));
}

}  // namespace

}  // namespace plemora
