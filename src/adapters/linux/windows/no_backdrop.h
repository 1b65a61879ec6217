#pragma once

#include "platform/backdrop_source.h"

namespace plemora {

/// Of displays that tell nobody what lies behind a window, and of windows that hide it.
class NoBackdrop : public BackdropSource {
 public:
  Kind kind() override { return Kind::none; }
  BackdropImage capture(const Rect&) override { return {}; }
  [[nodiscard]] Subscription observe(std::function<void()>) override { return {}; }
};

}  // namespace plemora
