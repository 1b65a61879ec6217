#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "main/stage/scenario.h"

// Whatever a scenario file holds: it is read the same way each time, or refused with one line that
// names the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using plemora::parseScenario;
  using plemora::ScenarioError;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const plemora::Scenario scenario = parseScenario(text, "a.json");
    const plemora::Scenario again = parseScenario(text, "a.json");
    if (scenario.steps.size() != again.steps.size()) {
      std::abort();
    }
    for (std::size_t i = 0; i < scenario.steps.size(); ++i) {
      const auto& step = scenario.steps[i];
      if (step.verb.empty() || step.action.index() != again.steps[i].action.index()) {
        std::abort();
      }
    }
  } catch (const ScenarioError& error) {
    const std::string_view message = error.what();
    const auto breaksLine = [](char c) { return c == '\n' || c == '\0'; };
    if (!message.starts_with("a.json") || std::ranges::any_of(message, breaksLine)) {
      std::abort();
    }
  }
  return 0;
}
