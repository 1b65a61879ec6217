#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace plemora {

/// Something that a user names on the command line.
struct Named {
  std::string id;
  std::string name;
};

/// Finds the one candidate that the text means, without regard to case: the one with that id, else
/// the one with that name, else the only one whose name or id begins with the text. None when
/// there is none, or more than one; problem then says so and lists the candidates. what is "app"
/// or "device".
std::optional<std::size_t> matchName(std::string_view text, const std::vector<Named>& candidates,
                                     std::string_view what, std::string& problem);

}  // namespace plemora
