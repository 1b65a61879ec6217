#include "windows/sway_display.h"

#include <pwd.h>
#include <unistd.h>

#include <QStandardPaths>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

#include "support/wait.h"

namespace plemora {

namespace {

constexpr double patience = 10;  // seconds
constexpr const char* output = "HEADLESS-1";

std::string makeDirectory() {
  std::string name = std::filesystem::temp_directory_path() / "plemora-sway-XXXXXX";
  return mkdtemp(name.data()) == nullptr ? "" : name;
}

}  // namespace

SwayDisplay::SwayDisplay(int scale) : scale_(scale), directory_(makeDirectory()) {
  for (const char* program : {"sway", "swaybg", "grim", "wtype", "setpriv"}) {
    if (QStandardPaths::findExecutable(program).isEmpty()) {
      fault_ = std::string("the program ") + program + " is not installed";
      return;
    }
  }
  std::ostringstream config;
  config << "output " << output << " resolution 1000x700 scale " << scale << " bg #" << std::hex
         << background << " solid_color\nxwayland disable\n";
  start(config.str());
}

void SwayDisplay::start(const std::string& config) {
  std::ofstream(directory_ + "/config") << config;
  std::vector<std::string> arguments;
  if (geteuid() == 0) {  // sway refuses to run as root
    const passwd* nobody = getpwnam("nobody");
    if (nobody == nullptr || chown(directory_.c_str(), nobody->pw_uid, nobody->pw_gid) != 0) {
      fault_ = "sway does not run as root, and there is no user nobody to run it as";
      return;
    }
    arguments = {"setpriv", "--reuid=nobody", "--regid=" + std::to_string(nobody->pw_gid),
                 "--clear-groups", "--pdeathsig=KILL"};
  }
  arguments.insert(arguments.end(), {"sway", "-c", directory_ + "/config"});
  sway_ = std::make_unique<rig::ChildProcess>(rig::ChildOptions{
      arguments,
      {"XDG_RUNTIME_DIR=" + directory_, "HOME=" + directory_, "WLR_BACKENDS=headless",
       "WLR_LIBINPUT_NO_DEVICES=1", "WLR_RENDERER=pixman", "WAYLAND_DISPLAY", "DISPLAY", "SWAYSOCK",
       "DBUS_SESSION_BUS_ADDRESS=disabled:"},
      directory_ + ".log"});
  std::string display;
  rig::eventually(patience, [&] {
    for (const auto& entry : std::filesystem::directory_iterator(directory_)) {
      const std::string name = entry.path().filename();
      if (name.starts_with("sway-ipc.")) {
        socket_ = entry.path();
      } else if (name.starts_with("wayland-") && !name.ends_with(".lock")) {
        display = entry.path();
      }
    }
    return (!socket_.empty() && !display.empty()) || !sway_->running();
  });
  if (socket_.empty() || display.empty()) {
    fault_ = "sway did not start; its log is " + directory_ + ".log";
    return;
  }
  qputenv("WAYLAND_DISPLAY", display.c_str());
  qunsetenv("DISPLAY");
  if (!rig::eventually(patience, [&] { return pixel({1, 1}) == background; })) {
    fault_ = "sway shows no background; its log is " + directory_ + ".log";
  }
  // Keeps a keyboard plugged in: the one that a key comes from goes as soon as it is pressed.
  keyboard_ = std::make_unique<rig::ChildProcess>(rig::ChildOptions{
      {"wtype", "-s", "600000", "-k", "Shift_L"}, {"XDG_RUNTIME_DIR=" + directory_}, "/dev/null"});
}

SwayDisplay::~SwayDisplay() {
  keyboard_.reset();
  if (sway_) {
    sway_->stop();
  }
  qunsetenv("WAYLAND_DISPLAY");
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
  if (fault_.empty()) {
    std::filesystem::remove(directory_ + ".log", ignored);
  }
}

std::optional<std::string> SwayDisplay::run(std::vector<std::string> arguments) {
  rig::ChildProcess program({std::move(arguments),
                             {"SWAYSOCK=" + socket_, "XDG_RUNTIME_DIR=" + directory_},
                             "/dev/null",
                             true});
  std::string out = program.readAll(patience);
  if (program.wait(patience) != 0) {
    return std::nullopt;
  }
  return out;
}

QImage SwayDisplay::screenshot() {
  const auto picture = run({"grim", "-t", "ppm", "-o", output, "-"});
  return picture ? QImage::fromData(QByteArray::fromStdString(*picture), "PPM") : QImage();
}

unsigned SwayDisplay::pixel(const QPoint& point) {
  const QImage image = screenshot();
  return image.isNull() ? 0 : image.pixel(point * scale_) & 0xffffff;
}

void SwayDisplay::pressKey(const std::string& key) {
  run({"wtype", "-k", key});
}

}  // namespace plemora
