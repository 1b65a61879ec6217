#include "main/ctl/name_match.h"

#include <functional>

#include "base/text.h"
#include "main/ctl/text_table.h"

namespace plemora {

namespace {

using Indexes = std::vector<std::size_t>;

Indexes select(const std::vector<Named>& candidates,
               const std::function<bool(const Named&)>& wanted) {
  Indexes found;
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    if (wanted(candidates[i])) {
      found.push_back(i);
    }
  }
  return found;
}

std::string listed(const std::vector<Named>& candidates, const Indexes& indexes) {
  std::string lines;
  for (const std::size_t i : indexes) {
    lines += "\n  " + printable(candidates[i].name) + "  (" + printable(candidates[i].id) + ")";
  }
  return lines;
}

}  // namespace

std::optional<std::size_t> matchName(std::string_view text, const std::vector<Named>& candidates,
                                     std::string_view what, std::string& problem) {
  const std::string wanted = lowercased(text);
  const std::function<bool(const Named&)> rules[] = {
      [&](const Named& named) { return named.id == text; },
      [&](const Named& named) { return lowercased(named.id) == wanted; },
      [&](const Named& named) { return lowercased(named.name) == wanted; },
      [&](const Named& named) {
        return !wanted.empty() && (lowercased(named.name).starts_with(wanted) ||
                                   lowercased(named.id).starts_with(wanted));
      },
  };
  const std::string quoted = "\"" + printable(text) + "\"";
  for (const auto& rule : rules) {
    const Indexes found = select(candidates, rule);
    if (found.size() == 1) {
      return found.front();
    }
    if (found.size() > 1) {
      problem = quoted + " means more than one " + std::string(what) +
                "; name one by its id:" + listed(candidates, found);
      return std::nullopt;
    }
  }
  problem = "no " + std::string(what) + " is called " + quoted;
  if (candidates.empty()) {
    problem += "; there is no " + std::string(what) + " at all";
  } else {
    problem +=
        "; there is:" + listed(candidates, select(candidates, [](const Named&) { return true; }));
  }
  return std::nullopt;
}

}  // namespace plemora
