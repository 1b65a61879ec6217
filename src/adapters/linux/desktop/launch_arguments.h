#pragma once

#include <map>
#include <string>
#include <vector>

namespace plemora {

/// The "-key value" pairs among a program's arguments (without its name). A key starts with exactly
/// one dash, a value with none; what makes no pair is passed over. The last pair of a key wins.
std::map<std::string, std::string> launchArguments(const std::vector<std::string>& arguments);

}  // namespace plemora
