#include "adapters/linux/desktop/launch_arguments.h"

#include <cstddef>

namespace plemora {

std::map<std::string, std::string> launchArguments(const std::vector<std::string>& arguments) {
  std::map<std::string, std::string> pairs;
  for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
    const std::string& key = arguments[i];
    const std::string& value = arguments[i + 1];
    if (key.size() > 1 && key[0] == '-' && key[1] != '-' && !value.starts_with('-')) {
      pairs[key.substr(1)] = value;
      ++i;
    }
  }
  return pairs;
}

}  // namespace plemora
