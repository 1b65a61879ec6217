#pragma once

#include <string>
#include <vector>

#include "adapters/linux/dbus/mixer_state.h"
#include "main/ctl/text_table.h"

namespace plemora {

/// How the output can look.
struct OutputStyle {
  bool colour = false;
  bool utf8 = true;  ///< whether the terminal shows more than ASCII
  int width = 0;     ///< columns of the terminal; 0: unlimited
};

/// "default" for an app that follows it, else the name of the chosen device; its UID and
/// "(absent)" when it is not there.
std::string outputText(const AppState& app, const MixerState& state);

/// The table of "list"; says so when there is no app.
std::string appsText(const MixerState& state, const OutputStyle& style);
/// The table of "devices"; says so when there is none.
std::string devicesText(const MixerState& state, const OutputStyle& style);

/// The same as indented JSON arrays, with the members of the bus interface and null for
/// "none".
std::string appsJson(const MixerState& state);
std::string devicesJson(const MixerState& state);

/// The answer of "master": volume, mute and device.
std::string masterText(const MixerState& state);

/// The answer of "status" for one app.
std::string audibilityText(const AppState& app, const AudibilityReport& report,
                           const OutputStyle& style);

/// What changed, one line each, for "watch" when nobody looks at it live.
std::string changesText(const MixerState& before, const MixerState& after);

/// One picture of "watch" for a terminal of that many lines: no line is longer than it is wide,
/// and two lines at the end are left for the caller.
std::string watchText(const MixerState& state, const std::vector<LevelReport>& levels,
                      const OutputStyle& style, int lines);

}  // namespace plemora
