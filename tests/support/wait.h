#pragma once

#include <chrono>
#include <thread>

namespace plemora::rig {

/// Asks until the answer is true or the time is over; the last answer. Other processes tell
/// nobody when they are ready, so the rig has to ask them; it never sleeps a fixed time.
template <typename Question>
bool eventually(double seconds, Question question) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!question()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return question();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(4));
  }
  return true;
}

}  // namespace plemora::rig
