#include "fake_desktop.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace plemora {

namespace fs = std::filesystem;

FakeDesktop::FakeDesktop() {
  for (const char* folder : {"@/usr/bin", "@/usr/lib", "@/usr/share/applications", "@/opt",
                             "@/home/user", "@/proc", "@/var/lib/flatpak/applications"}) {
    fs::create_directories(expand(folder));
  }
}

DesktopPaths FakeDesktop::paths() const {
  DesktopPaths paths;
  paths.processes = expand("@/proc");
  for (const char* folder : {"@/home/user/.local/share/applications", "@/usr/share/applications",
                             "@/var/lib/flatpak/applications"}) {
    paths.applications.emplace_back(expand(folder));
  }
  paths.programs = {expand("@/usr/local/bin"), expand("@/usr/bin")};
  paths.shared = {expand("@/usr/lib"), expand("@/usr/libexec"), expand("@/usr/share"),
                  expand("@/opt"), expand("@")};
  paths.home = expand("@/home/user");
  paths.locale = "de_AT.UTF-8";
  return paths;
}

std::string FakeDesktop::expand(std::string text) const {
  for (std::size_t at = text.find('@'); at != std::string::npos; at = text.find('@', at + 1)) {
    const bool isPath = at + 1 == text.size() || text[at + 1] == '/';
    if (isPath && (at == 0 || std::string("= \"\n").find(text[at - 1]) != std::string::npos)) {
      text.replace(at, 1, folder_.path().string());
    }
  }
  return text;
}

void FakeDesktop::addProgram(const std::string& path, const std::string& content) {
  writeFile(expand(path), expand(content));
  fs::permissions(expand(path), fs::perms::owner_all);
}

void FakeDesktop::addLink(const std::string& path, const std::string& target) {
  fs::create_directories(fs::path(expand(path)).parent_path());
  fs::create_symlink(expand(target), expand(path));
}

void FakeDesktop::addEntry(const std::string& id, const std::string& lines,
                           const std::string& folder) {
  writeFile(fs::path(expand(folder)) / (id + ".desktop"),
            expand("[Desktop Entry]\nType=Application\n" + lines + "\n"));
}

void FakeDesktop::removeEntry(const std::string& id) {
  fs::remove(fs::path(expand("@/usr/share/applications")) / (id + ".desktop"));
}

void FakeDesktop::start(const FakeProcess& process) {
  end(process.pid);
  const fs::path folder = fs::path(expand("@/proc")) / std::to_string(process.pid);
  fs::create_directories(folder / "root");
  const std::string executable = expand(process.executable);
  std::ostringstream stat;
  stat << process.pid << " (" << fs::path(executable).filename().string().substr(0, 15) << ") S "
       << process.parent;
  for (int field = 5; field < 22; ++field) {
    stat << " 0";
  }
  stat << ' ' << (process.startTime ? process.startTime : static_cast<unsigned>(process.pid))
       << " 0 0\n";
  writeFile(folder / "stat", stat.str());
  const auto joined = [this](const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) {
      text += expand(part) + '\0';
    }
    return text;
  };
  writeFile(folder / "cmdline",
            process.arguments.empty() ? executable + '\0' : joined(process.arguments));
  writeFile(folder / "environ", joined(process.environment));
  writeFile(folder / "cgroup", "0::" + process.controlGroup + "\n");
  if (!executable.empty()) {
    fs::create_symlink(executable, folder / "exe");
  }
  fs::create_symlink(expand("@/home/user"), folder / "cwd");
  if (!process.flatpakId.empty()) {
    writeFile(folder / "root/.flatpak-info",
              "[Instance]\nname=no\n[Application]\nname=" + process.flatpakId + "\nruntime=x\n");
  }
}

void FakeDesktop::end(std::int32_t pid) {
  fs::remove_all(fs::path(expand("@/proc")) / std::to_string(pid));
}

}  // namespace plemora
