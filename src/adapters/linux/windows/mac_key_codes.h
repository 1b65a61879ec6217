#pragma once

namespace plemora {

/// The virtual key code that a Mac has for a key of the toolkit (Qt::Key); -1 for keys that have
/// none here.
int macKeyCode(int qtKey);

}  // namespace plemora
