#pragma once

#include <optional>
#include <string>
#include <vector>

namespace plemora {

/// What an interpreter was told to run.
struct InterpretedProgram {
  enum class Kind {
    nothing,  ///< a prompt, a one-liner, or a helper of a larger program
    file,     ///< a script, jar or app folder; target is its path, maybe relative
    named,    ///< target is a full name such as "java:org.example.Player"
  };
  Kind kind = Kind::nothing;
  std::string target;
  std::string name;  ///< for people; of named ones only
};

/// Whether the executable with that base name runs programs of others; its arguments then say
/// which. None when it is a program of its own. The first argument is what it was called by.
std::optional<InterpretedProgram> interpretedProgram(const std::string& executableName,
                                                     const std::vector<std::string>& arguments);

}  // namespace plemora
