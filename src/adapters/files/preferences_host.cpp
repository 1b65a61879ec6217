#include "adapters/files/preferences_host.h"

#include <fstream>
#include <stdexcept>

namespace plemora {

std::string preferencesHost(const std::optional<std::string>& given) {
  std::string name = given.value_or("");
  if (!given) {
    std::ifstream("/etc/machine-id") >> name;
    if (name.empty()) {
      throw std::runtime_error(
          "this machine has no id in /etc/machine-id; name it with --preferences-host NAME");
    }
  }
  if (name.empty() || name.find('/') != name.npos) {
    throw std::runtime_error("\"" + name + "\" cannot be a machine's name in a file's name");
  }
  return name;
}

}  // namespace plemora
