#pragma once

#include <optional>
#include <string>

namespace plemora {

/// The name that a machine has in the names of its preference files: the one that is given, else
/// this machine's id. Throws std::runtime_error, with what to do, when there is none or it cannot
/// be a part of a file's name.
std::string preferencesHost(const std::optional<std::string>& given);

}  // namespace plemora
