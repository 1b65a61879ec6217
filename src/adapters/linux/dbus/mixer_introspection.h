#pragma once

namespace plemora {

/// The interface as introspection shows it (the inside of a <node>).
extern const char mixerIntrospection[];

}  // namespace plemora
