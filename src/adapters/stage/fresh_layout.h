#pragma once

#include <string>

namespace plemora {

class Preferences;

/// The two preference values of a Control Center as it comes with a fresh system, in the form that
/// they are stored in: tiles of all four sizes (Sound's is the one in row 4), controls of other
/// programs, and much that Plemora does not understand and must keep.
struct FreshLayout {
  std::string boxes;     ///< key "boxes" of the layout domain, this machine's
  std::string controls;  ///< the controls' configuration, every machine's
};

FreshLayout freshLayout();

/// Stores both, each under its key, domain and host, and synchronizes. False when that failed.
bool storeFreshLayout(Preferences& preferences);

}  // namespace plemora
