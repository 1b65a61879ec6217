#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
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

const std::string chrome = "@/opt/google/chrome/chrome";
const std::string slice = "/user.slice/user-1000.slice/user@1000.service/app.slice/";

// A case is a line "WHAT: PID is ID", with " of MAIN" where another process is the app's main one,
// and below it the processes, "  PID PARENT EXECUTABLE" each. Behind bars follow the arguments, the
// unit
// (~ is the user's app.slice), the environment, the entry and the process of a launch, the
// application of a Flatpak and the start time.

constexpr const char* sandboxes = R"(
Flatpak by its scope, also without an entry: 10 is org.example.Tune
  10 1 @/usr/bin/bwrap | unit ~app-flatpak-org.example.Tune-77.scope
Flatpak: the player inside belongs to the outermost process of the sandbox: 11 is org.videolan.VLC of 10
  10 1 @/usr/bin/bwrap | unit ~app-flatpak-org.videolan.VLC-77.scope
  11 10 /app/bin/vlc | unit ~app-flatpak-org.videolan.VLC-77.scope | flatpak org.videolan.VLC
Flatpak by its own word when there is no scope: 10 is org.videolan.VLC
  10 1 @/usr/bin/mpv | run mpv | flatpak org.videolan.VLC
Flatpak started by another app stays its own: 11 is org.videolan.VLC
  10 1 @/usr/bin/frontend
  11 10 @/usr/bin/bwrap | unit ~app-flatpak-org.videolan.VLC-77.scope
Snap by its scope: 10 is spotify_spotify
  10 1 /snap/spotify/80/usr/share/spotify/spotify | unit ~snap.spotify.spotify-0a1b2c3d-0000-1111-2222-333344445555.scope
Snap by its scope of the older form: 10 is spotify_spotify
  10 1 /snap/spotify/80/usr/share/spotify/spotify | unit ~snap.spotify.spotify.0a1b2c3d-0000-1111-2222-333344445555.scope
Snap as a service, without an entry: 10 is mopidy_daemon
  10 1 /snap/mopidy/1/bin/mopidy | unit /system.slice/snap.mopidy.daemon.service
)";

constexpr const char* launchersAndUnits = R"(
launched by an entry: that process itself: 10 is org.example.Frontend
  10 1 @/usr/bin/bash | run bash -c x | launched org.example.Frontend 10
launched by an entry: what came of it, though its launcher is gone: 12 is org.example.Frontend
  12 1 @/usr/bin/ffplay | launched org.example.Frontend 10
launched by an entry: a part that cut itself loose leads to what was launched: 12 is org.example.Frontend of 10
  10 1 @/usr/bin/frontend | launched org.example.Frontend 10
  12 1 @/usr/bin/ffplay | launched org.example.Frontend 10
the environment of a terminal says nothing of what runs in it: 10 is mpv
  10 1 @/usr/bin/mpv | launched org.gnome.Terminal 9
nor does that of a desktop shell: 10 is mpv
  10 1 @/usr/bin/mpv | launched org.gnome.Shell 9
an entry that is not installed says nothing: 10 is mpv
  10 1 @/usr/bin/mpv | env GIO_LAUNCHED_DESKTOP_FILE=/gone/elsewhere.desktop GIO_LAUNCHED_DESKTOP_FILE_PID=10
scope with a launcher's name and an escaped id: 10 is org.example.Frontend
  10 1 @/usr/bin/ffplay | unit ~app-gnome-org.example.Frontend-1234.scope
service of an escaped id: 10 is google-chrome
  10 1 @/usr/bin/ffplay | unit ~app-google\x2dchrome@0a1b2c3d.service
scope whose random part and id have dashes that nobody escaped: 10 is google-chrome
  10 1 @/usr/bin/ffplay | unit ~app-google-chrome-0a1b-2c3d.scope
activated over the bus: 10 is org.example.Radio
  10 1 @/usr/bin/ffplay | unit ~dbus-:1.2-org.example.Radio@0.service
the scope of a terminal says nothing of what runs in it: 10 is mpv
  10 1 @/usr/bin/mpv | unit ~app-gnome-org.gnome.Terminal-12.scope
a tab inside of an app's scope is a terminal's: 10 is mpv
  10 1 @/usr/bin/mpv | unit ~app-org.example.Frontend-3.scope/vte-spawn-1.scope
)";

constexpr const char* parentChains = R"(
a player inside another program is that program: 11 is org.example.Frontend of 10
  10 1 @/usr/bin/frontend
  11 10 @/usr/bin/mpv | run mpv --idle
also through a shell, and for what the player starts: 13 is org.example.Frontend of 10
  10 1 @/usr/bin/frontend
  11 10 @/usr/bin/dash | run sh -c mpv x
  12 11 @/usr/bin/mpv
  13 12 @/usr/bin/ffplay
a player in a terminal is itself: 10 is mpv
  5 1 @/usr/libexec/gnome-terminal-server | unit ~gnome-terminal.service
  6 5 @/usr/bin/bash | run bash | unit ~app-org.gnome.Terminal.slice/vte-spawn-1.scope
  10 6 @/usr/bin/mpv | run mpv song | unit ~app-org.gnome.Terminal.slice/vte-spawn-1.scope
a player of an editor in a terminal is the editor's: 11 is vim of 10
  5 1 @/usr/libexec/gnome-terminal-server | unit ~gnome-terminal.service
  6 5 @/usr/bin/bash | run bash | unit ~app-org.gnome.Terminal.slice/vte-spawn-1.scope
  10 6 @/usr/bin/vim | unit ~app-org.gnome.Terminal.slice/vte-spawn-1.scope
  11 10 @/usr/bin/mpv | unit ~app-org.gnome.Terminal.slice/vte-spawn-1.scope
a terminal that rings its bell is an app: 5 is org.gnome.Terminal
  5 1 @/usr/bin/gnome-terminal | unit ~app-gnome-org.gnome.Terminal-12.scope
what a file manager opens is itself: 11 is mpv
  10 1 @/usr/bin/nautilus
  11 10 @/usr/bin/mpv
what a desktop shell opens is itself: 11 is mpv
  10 1 @/usr/bin/gnome-shell
  11 10 @/usr/bin/mpv
what a panel opens is itself, though its preferences are an app: 11 is mpv
  10 1 @/usr/bin/xfce4-panel
  11 10 @/usr/bin/mpv
what a script without an entry plays is the player's: 11 is mpv
  5 1 @/usr/libexec/gnome-terminal-server | unit ~gnome-terminal.service
  6 5 @/usr/bin/bash | run bash | unit ~app-org.gnome.Terminal.slice/vte-spawn-1.scope
  10 6 @/usr/bin/bash | run bash play.sh | unit ~app-org.gnome.Terminal.slice/vte-spawn-1.scope
  11 10 @/usr/bin/mpv | unit ~app-org.gnome.Terminal.slice/vte-spawn-1.scope
an app launched by another app is its own: 11 is mpv
  10 1 @/usr/bin/frontend
  11 10 @/usr/bin/mpv | launched mpv 11
)";

constexpr const char* browsers = R"(
renderers lead to the outermost process: 12 is google-chrome of 10
  10 1 @/opt/google/chrome/chrome | unit ~app-gnome-google\x2dchrome-10.scope
  11 10 @/opt/google/chrome/chrome | run chrome --type=zygote | unit ~app-com.google.Chrome-10.scope
  12 11 @/opt/google/chrome/chrome | run chrome --type=renderer | unit ~app-com.google.Chrome-10.scope
a helper of another name that cut itself loose leads there too: 12 is google-chrome of 40
  12 1 @/opt/google/chrome/chrome_crashpad_handler | start 200
  40 1 @/opt/google/chrome/chrome | start 100
  41 40 @/opt/google/chrome/chrome | run chrome --type=renderer | start 110
a web app is the browser, whichever was launched first: 10 is google-chrome
  10 1 @/opt/google/chrome/chrome | launched chrome-webapp-Default 10
behind a wrapper script in a common folder: 11 is firefox of 10
  10 1 @/usr/lib/firefox/firefox | run firefox
  11 10 @/usr/lib/firefox/plugin-container
the wrapper itself: 10 is firefox
  10 1 @/usr/bin/dash | run /bin/sh @/usr/bin/firefox
)";

constexpr const char* programs = R"(
a script with an entry, run by its interpreter: 10 is org.example.Radio
  10 1 @/usr/bin/python3.11 | run /usr/bin/python3 -u @/usr/bin/radio
a jar with an entry: 10 is jukebox
  10 1 @/usr/bin/java | run java -Xmx1g -jar @/opt/jukebox/jukebox.jar
a script without one, found from the working folder: 10 is @/home/user/tunes.py
  10 1 @/usr/bin/python3.11 | run python3 tunes.py
another of the same name: 10 is @/home/user/other/tunes.py
  10 1 @/usr/bin/python3.11 | run python3 other/tunes.py
a class and a module: 10 is java:org.example.Horn
  10 1 @/usr/bin/java | run java -cp x.jar org.example.Horn
a module: 10 is python:horn
  10 1 @/usr/bin/python3.11 | run python3 -m horn
a worker of a script belongs to it: 11 is @/home/user/tunes.py of 10
  10 1 @/usr/bin/python3.11 | run python3 tunes.py
  11 10 @/usr/bin/python3.11 | run python3 -c spawn_main()
Windows programs by their path: 10 is wine:c:\games\maze\maze.exe
  10 1 @/usr/bin/wine64-preloader | run C:\Games\Maze\maze.exe
a link to a program of many names, called by the link: 10 is pw-play
  10 1 @/usr/bin/pw-cat | run pw-play x.wav
the same program by its own name: 10 is pw-cat
  10 1 @/usr/bin/pw-cat | run pw-cat
the first of two programs of one name keeps the name: 10 is player
  10 1 @/usr/local/bin/player | run player
the second has its path: 10 is @/usr/bin/player
  10 1 @/usr/bin/player | run player
a program of the user has its path: 10 is @/home/user/tools/player
  10 1 @/home/user/tools/player | run ./player
a player called like an app that it is not: 10 is @/home/user/tools/mpv
  10 1 @/home/user/tools/mpv | run mpv
an entry whose command is a line for the shell: 10 is siren
  10 1 @/usr/bin/siren | run siren
an entry of the program's name that starts another one: 10 is @/usr/bin/ffplay#program
  10 1 @/usr/bin/ffplay | run ffplay
replaced by an update while it runs: 10 is mpv
  10 1 @/usr/bin/mpv (deleted) | run mpv
helpers in the folder of a program without an entry: 11 is @/home/user/games/maze/maze of 10
  10 1 @/home/user/games/maze/maze
  11 10 @/home/user/games/maze/audio-helper
an AppImage under the path of its file: 10 is @/home/user/Tune.AppImage
  10 1 @/tmp/.mount_TuneX1/usr/bin/tune | env APPDIR=@/tmp/.mount_TuneX1 APPIMAGE=@/home/user/Tune.AppImage
a process of somebody else, of which only the name can be seen: 10 is mpv
  10 1  | run mpv
)";

struct Case {
  std::string what;
  std::int32_t pid = 0;
  std::string id;
  std::int32_t main = 0;
  std::vector<FakeProcess> processes;
};

FakeProcess parseProcess(const std::string& line) {
  FakeProcess process;
  std::istringstream parts(line);
  std::string part;
  std::getline(parts, part, '|');
  std::istringstream first(part);
  first >> process.pid >> process.parent >> std::ws;
  std::getline(first, process.executable);
  process.executable.erase(process.executable.find_last_not_of(' ') + 1);
  while (std::getline(parts, part, '|')) {
    std::istringstream words(part);
    std::string kind;
    words >> kind;
    std::vector<std::string> values;
    for (std::string word; words >> word;) {
      values.push_back(word);
    }
    if (kind == "run") {
      process.arguments = values;
    } else if (kind == "unit") {
      process.controlGroup = values[0][0] == '~' ? slice + values[0].substr(1) : values[0];
    } else if (kind == "env") {
      process.environment = values;
    } else if (kind == "launched") {
      process.environment = {
          "GIO_LAUNCHED_DESKTOP_FILE=@/usr/share/applications/" + values[0] + ".desktop",
          "GIO_LAUNCHED_DESKTOP_FILE_PID=" + values[1]};
    } else if (kind == "flatpak") {
      process.flatpakId = values[0];
    } else {
      EXPECT_EQ(kind, "start");
      process.startTime = std::stoul(values[0]);
    }
  }
  return process;
}

std::vector<Case> parseCases(const std::string& text) {
  std::vector<Case> cases;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("  ")) {
      cases.back().processes.push_back(parseProcess(line));
    } else if (!line.empty()) {
      const std::size_t colon = line.rfind(": ");
      Case test;
      test.what = line.substr(0, colon);
      std::istringstream words(line.substr(colon + 1));
      std::string is;
      std::string of;
      words >> test.pid >> is >> test.id >> of >> test.main;
      test.main = of.empty() ? test.pid : test.main;
      cases.push_back(test);
    }
  }
  return cases;
}

void check(const char* cases) {
  for (const Case& test : parseCases(cases)) {
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
  check(sandboxes);
}
TEST(WorkspaceRules, LaunchersAndUnits) {
  check(launchersAndUnits);
}
TEST(WorkspaceRules, ParentChains) {
  check(parentChains);
}
TEST(WorkspaceRules, Browsers) {
  check(browsers);
}
TEST(WorkspaceRules, Programs) {
  check(programs);
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
