#include "support/pipewire/private_session.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "support/wait.h"

namespace plemora::rig {

namespace {

namespace fs = std::filesystem;

const std::map<Daemon, std::string> programs = {{Daemon::bus, "dbus-daemon"},
                                                {Daemon::pipeWire, "pipewire"},
                                                {Daemon::sessionManager, "wireplumber"},
                                                {Daemon::pulse, "pipewire-pulse"}};

bool accepts(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool accepted = connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  close(fd);
  return accepted;
}

/// The session manager must not take the real cards: two of them would fight over those.
void writeConfiguration(const fs::path& config) {
  writeFile(config / "wireplumber/main.lua.d/51-no-hardware.lua",
            "alsa_monitor.enabled = false\nv4l2_monitor.enabled = false\n"
            "libcamera_monitor.enabled = false\n");
  writeFile(config / "wireplumber/bluetooth.lua.d/51-no-hardware.lua",
            "bluez_monitor.enabled = false\n");
  writeFile(config / "wireplumber/wireplumber.conf.d/51-no-hardware.conf",
            "wireplumber.profiles = {\n  main = {\n    hardware.audio = disabled\n"
            "    hardware.bluetooth = disabled\n    hardware.video-capture = disabled\n  }\n}\n");
  // Who is at home here has set the program up long ago.
  writeFile(config / "plemora/settings.json", R"({"didCompleteSetup": true})");
}

}  // namespace

PrivateSession::PrivateSession() {
  const fs::path root = directory_;
  for (const char* folder : {"run", "config", "state", "data", "cache", "home"}) {
    fs::create_directories(root / folder);
  }
  chmod((root / "run").c_str(), 0700);
  writeConfiguration(root / "config");
  environment_ = {"XDG_RUNTIME_DIR=" + directory_ + "/run",
                  "XDG_CONFIG_HOME=" + directory_ + "/config",
                  "XDG_STATE_HOME=" + directory_ + "/state",
                  "XDG_DATA_HOME=" + directory_ + "/data",
                  "XDG_CACHE_HOME=" + directory_ + "/cache",
                  "HOME=" + directory_ + "/home",
                  "DBUS_SESSION_BUS_ADDRESS=unix:path=" + directory_ + "/run/bus",
                  "PIPEWIRE_RUNTIME_DIR",
                  "PIPEWIRE_REMOTE",
                  "PULSE_SERVER",
                  "PULSE_RUNTIME_PATH",
                  "DISPLAY",
                  "WAYLAND_DISPLAY"};
  for (const auto& entry : environment_) {
    const auto equals = entry.find('=');
    if (equals == std::string::npos) {
      unsetenv(entry.c_str());
    } else {
      setenv(entry.substr(0, equals).c_str(), entry.substr(equals + 1).c_str(), 1);
    }
  }
  for (const auto daemon : {Daemon::bus, Daemon::pipeWire, Daemon::sessionManager, Daemon::pulse}) {
    start(daemon);
  }
}

PrivateSession::~PrivateSession() {
  graph_.reset();
  for (const auto daemon : {Daemon::pulse, Daemon::sessionManager, Daemon::pipeWire, Daemon::bus}) {
    if (daemons_[daemon]) {
      stop(daemon);
    }
  }
}

bool PrivateSession::answers(Daemon daemon) {
  switch (daemon) {
    case Daemon::bus:
      return accepts(directory_ + "/run/bus");
    case Daemon::pipeWire:
      return accepts(socket());
    case Daemon::pulse:
      return accepts(directory_ + "/run/pulse/native");
    case Daemon::sessionManager:
      // The default metadata is its own, and comes and goes with it.
      return graph_->sync() && graph_->hasMetadata("default");
  }
  return false;
}

void PrivateSession::start(Daemon daemon) {
  ChildOptions options;
  options.arguments = {programs.at(daemon)};
  if (daemon == Daemon::bus) {
    options.arguments = {"dbus-daemon", "--session", "--nofork", "--nopidfile",
                         "--address=unix:path=" + directory_ + "/run/bus"};
  }
  options.environment = environment_;
  options.logFile = directory_ + "/" + programs.at(daemon) + ".log";
  daemons_[daemon] = std::make_unique<ChildProcess>(options);
  const bool ready =
      eventually(10, [&] { return !daemons_[daemon]->running() || answers(daemon); });
  if (!ready || !daemons_[daemon]->running()) {
    throw std::runtime_error(programs.at(daemon) + " did not come up:\n" + logs());
  }
  if (daemon == Daemon::pipeWire) {
    graph_ = std::make_unique<GraphView>(socket());
  }
}

void PrivateSession::stop(Daemon daemon) {
  daemons_.at(daemon)->stop();
}

void PrivateSession::restart(Daemon daemon) {
  stop(daemon);
  start(daemon);
}

void PrivateSession::restartSessionManager(bool kill) {
  if (kill) {
    process(Daemon::sessionManager).kill();
  } else {
    stop(Daemon::sessionManager);
  }
  graph_->recreateSinks();
  start(Daemon::sessionManager);
  if (!eventually(5, [this] { return graph_->sync() && graph_->sinksAreReady(); })) {
    throw std::runtime_error("the session manager does not manage the sinks:\n" + logs());
  }
}

void PrivateSession::restartSoundServer() {
  for (const auto daemon : {Daemon::pulse, Daemon::sessionManager, Daemon::pipeWire}) {
    stop(daemon);
  }
  graph_.reset();
  for (const auto daemon : {Daemon::pipeWire, Daemon::sessionManager, Daemon::pulse}) {
    start(daemon);
  }
}

bool PrivateSession::waitForState(const std::string& node, const std::string& state,
                                  double seconds) {
  return eventually(seconds, [&] {
    graph_->sync();
    const auto found = graph_->node(node);
    return found && found->state == state;
  });
}

bool PrivateSession::waitForLink(const std::string& from, const std::string& to, double seconds) {
  return eventually(seconds, [&] {
    graph_->sync();
    return graph_->isLinked(from, to);
  });
}

void PrivateSession::createSinks(int quantum) {
  graph_->forceQuantum(quantum);
  graph_->createSink({.name = "first", .description = "First Speakers", .priority = 900});
  graph_->createSink({.name = "second", .description = "Second Speakers", .priority = 800});
  // Now and then a session manager that has just started takes a sink up, but never to its end. A
  // new one it does.
  for (int attempt = 0; attempt < 3; ++attempt) {
    try {
      graph_->setDefaultSink("first");
      return;
    } catch (const std::runtime_error&) {
      graph_->recreateSinks();
    }
  }
  graph_->setDefaultSink("first");
}

std::map<std::string, std::string> PrivateSession::storedState() const {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(directory_ + "/state")) {
    if (entry.is_regular_file()) {
      files[entry.path().string()] = readFile(entry.path());
    }
  }
  return files;
}

std::string PrivateSession::logs() const {
  std::string text;
  for (const auto& entry : fs::directory_iterator(directory_)) {
    if (entry.path().extension() == ".log") {
      text += "--- " + entry.path().filename().string() + "\n" + readFile(entry.path());
    }
  }
  return text;
}

}  // namespace plemora::rig
