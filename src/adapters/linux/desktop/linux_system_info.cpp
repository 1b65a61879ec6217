#include "adapters/linux/desktop/linux_system_info.h"

#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace plemora {

namespace {

namespace fs = std::filesystem;

/// The file's text up to its first newline or zero byte; empty when it cannot be read.
std::string firstLine(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  text.resize(std::min(text.size(), text.find_first_of(std::string_view("\n\0", 2))));
  while (!text.empty() && text.back() == ' ') {
    text.pop_back();
  }
  return text;
}

}  // namespace

LinuxSystemInfo::LinuxSystemInfo(fs::path root, std::optional<std::string> bundleVersion)
    : root_(std::move(root)), bundleVersion_(std::move(bundleVersion)) {}

std::optional<std::string> LinuxSystemInfo::hardwareModel() {
  for (const char* file : {"sys/class/dmi/id/product_name", "sys/firmware/devicetree/base/model"}) {
    if (std::string name = firstLine(root_ / file); !name.empty()) {
      return name;
    }
  }
  return std::nullopt;
}

std::string LinuxSystemInfo::bundlePath() {
  std::error_code error;
  return fs::read_symlink(root_ / "proc/self/exe", error).string();
}

std::string LinuxSystemInfo::operatingSystemVersionString() {
  std::ifstream release(root_ / "etc/os-release");
  constexpr std::string_view key = "PRETTY_NAME=";
  for (std::string line; std::getline(release, line);) {
    if (line.starts_with(key)) {
      std::string name = line.substr(key.size());
      std::erase(name, '"');
      return name;
    }
  }
  return "Linux";
}

std::optional<double> LinuxSystemInfo::executableModificationDate() {
  struct stat status = {};
  if (::stat((root_ / "proc/self/exe").c_str(), &status) != 0) {
    return std::nullopt;
  }
  return static_cast<double>(status.st_mtim.tv_sec) +
         static_cast<double>(status.st_mtim.tv_nsec) / 1e9;
}

bool LinuxSystemInfo::hasInternalBattery() {
  std::error_code error;
  for (fs::directory_iterator supply(root_ / "sys/class/power_supply", error), end;
       !error && supply != end; supply.increment(error)) {
    const fs::path& folder = supply->path();
    if (firstLine(folder / "type") == "Battery" && firstLine(folder / "scope") != "Device" &&
        firstLine(folder / "present") != "0") {
      return true;
    }
  }
  return false;
}

}  // namespace plemora
