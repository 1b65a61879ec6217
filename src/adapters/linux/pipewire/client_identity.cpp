#include "adapters/linux/pipewire/client_identity.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <string>

namespace plemora {

namespace {

std::int32_t pidOf(const std::string& text) {
  std::int32_t pid = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), pid);
  return error == std::errc{} && end == text.data() + text.size() && pid > 0 ? pid : -1;
}

const std::string& firstOf(const PropertyMap& stream, const PropertyMap& client, const char* key) {
  const std::string& own = propertyOf(stream, key);
  return own.empty() ? propertyOf(client, key) : own;
}

// Whether a process of that number runs the claimed program. A process that does not let us look
// counts as the one: the number was right more often than not.
bool runsProgram(std::int32_t pid, const std::string& binary) {
  const std::filesystem::path process = "/proc/" + std::to_string(pid);
  std::error_code error;
  if (!std::filesystem::exists(process, error)) {
    return false;
  }
  if (binary.empty()) {
    return true;
  }
  const auto executable = std::filesystem::read_symlink(process / "exe", error);
  if (!error && executable.filename() == binary) {
    return true;
  }
  // The kernel keeps the first 15 characters of a program's name. argv[0] tells a symlinked one.
  std::string name;
  std::getline(std::ifstream(process / "comm"), name);
  if (!name.empty() && binary.starts_with(name)) {
    return true;
  }
  std::string argument;
  std::getline(std::ifstream(process / "cmdline"), argument, '\0');
  return error && name.empty() ? true : std::filesystem::path(argument).filename() == binary;
}

}  // namespace

ClientIdentity identifyClient(const PropertyMap& client, const PropertyMap& stream,
                              ClientDirectory& directory) {
  ClientIdentity identity;
  ClientHints& hints = identity.hints;
  hints.applicationName = firstOf(stream, client, "application.name");
  hints.applicationId = firstOf(stream, client, "application.id");
  hints.iconName = firstOf(stream, client, "application.icon-name");
  if (hints.iconName.empty()) {
    hints.iconName = firstOf(stream, client, "media.icon-name");
  }
  hints.binary = firstOf(stream, client, "application.process.binary");
  hints.portalAppId = propertyOf(client, "pipewire.access.portal.app_id");

  if (propertyOf(client, "client.api") != "pipewire-pulse") {
    identity.pid = pidOf(propertyOf(client, "pipewire.sec.pid"));
    if (identity.pid > 0) {
      return identity;
    }
  }
  hints.pidIsClaimed = true;
  const std::int32_t claimed = pidOf(firstOf(stream, client, "application.process.id"));
  if (claimed > 0 && hints.portalAppId.empty() && runsProgram(claimed, hints.binary)) {
    identity.pid = claimed;
    return identity;
  }
  // One number for all clients of one sandboxed app, so that it stays one app.
  const std::string key = !hints.portalAppId.empty()     ? "portal:" + hints.portalAppId
                          : !hints.applicationId.empty() ? "id:" + hints.applicationId
                          : !hints.binary.empty()        ? "binary:" + hints.binary
                                                         : "name:" + hints.applicationName;
  identity.pid = directory.syntheticPid(key);
  return identity;
}

}  // namespace plemora
