#include <algorithm>

#include "main/ctl/ctl_output.h"
#include "main/ctl/volume_text.h"

namespace plemora {

namespace {

// Columns of a level bar, and the width of a terminal from which there is room for more.
constexpr int shortBar = 16;
constexpr int longBar = 24;
constexpr int wideTerminal = 100;

std::string muteText(bool muted) {
  return muted ? "muted" : "not muted";
}

// "Firefox (org.mozilla.firefox)"
std::string label(const AppState& app) {
  return printable(app.name) + " (" + printable(app.id) + ")";
}

std::string masterVolumeText(const MixerState& state) {
  return state.volume ? percentText(*state.volume) : "none";
}

std::string deviceLabel(const std::string& uid, const MixerState& state) {
  const auto found = std::find_if(state.devices.begin(), state.devices.end(),
                                  [&](const DeviceState& device) { return device.uid == uid; });
  return uid.empty() ? "none" : printable(found == state.devices.end() ? uid : found->name);
}

// Collects "what before -> after" parts.
class Changes {
 public:
  void add(const std::string& what, const std::string& before, const std::string& after) {
    if (before != after) {
      text_ += (text_.empty() ? "" : ", ") + what + " " + before + " -> " + after;
    }
  }
  std::string line(const std::string& subject) const {
    return text_.empty() ? "" : subject + ": " + text_ + "\n";
  }

 private:
  std::string text_;
};

const AppState* findApp(const MixerState& state, const std::string& id) {
  const auto found = std::find_if(state.apps.begin(), state.apps.end(),
                                  [&](const AppState& app) { return app.id == id; });
  return found == state.apps.end() ? nullptr : &*found;
}

std::string arrival(const AppState& app, const MixerState& state) {
  return label(app) + ": new, playing " + (app.playing ? "yes" : "no") + ", volume " +
         percentText(app.volume) + ", " + muteText(app.muted) + ", output " +
         outputText(app, state) + "\n";
}

}  // namespace

std::string changesText(const MixerState& before, const MixerState& after) {
  std::string text;
  for (const AppState& app : before.apps) {
    if (findApp(after, app.id) == nullptr) {
      text += label(app) + ": gone\n";
    }
  }
  for (const AppState& app : after.apps) {
    const AppState* old = findApp(before, app.id);
    if (old == nullptr) {
      text += arrival(app, after);
      continue;
    }
    Changes changes;
    changes.add("playing", old->playing ? "yes" : "no", app.playing ? "yes" : "no");
    changes.add("volume", percentText(old->volume), percentText(app.volume));
    changes.add("mute", muteText(old->muted), muteText(app.muted));
    changes.add("output", outputText(*old, before), outputText(app, after));
    text += changes.line(label(app));
  }
  Changes master;
  master.add("device", deviceLabel(before.defaultDevice, before),
             deviceLabel(after.defaultDevice, after));
  master.add("volume", masterVolumeText(before), masterVolumeText(after));
  master.add("mute", muteText(before.muted), muteText(after.muted));
  text += master.line("master");
  Changes server;
  server.add("sound server", before.connected ? "connected" : "gone",
             after.connected ? "connected" : "gone");
  server.add("permission", printable(before.permission), printable(after.permission));
  text += server.line("plemora");
  return text;
}

std::string watchText(const MixerState& state, const std::vector<LevelReport>& levels,
                      const OutputStyle& style, int lines) {
  std::string head = "master " + masterVolumeText(state) + (state.muted ? ", muted" : "") + "  (" +
                     deviceLabel(state.defaultDevice, state) + ")";
  if (!state.connected && !state.demo) {
    head = "waiting for a sound server";
  }
  TextTable table;
  const int barWidth = style.width > 0 && style.width < wideTerminal ? shortBar : longBar;
  // Heads as wide as any level keep the columns where they are.
  table.rows.push_back({{"APP", CellStyle::strong},
                        {"VOLUME", CellStyle::strong, true},
                        {"MUTE", CellStyle::strong},
                        {"LEVEL", CellStyle::strong},
                        {"      OUT", CellStyle::strong, true},
                        {"       IN", CellStyle::strong, true},
                        {"OUTPUT", CellStyle::strong}});
  const std::size_t room = static_cast<std::size_t>(std::max(1, lines - 5));
  for (const AppState& app : state.apps) {
    if (table.rows.size() >= room) {
      break;
    }
    const auto level = std::find_if(levels.begin(), levels.end(),
                                    [&](const LevelReport& report) { return report.id == app.id; });
    const bool isTapped = level != levels.end();
    const CellStyle nameStyle = app.playing ? CellStyle::plain : CellStyle::faint;
    TableCell bar{isTapped ? levelBar(level->outputPeak, barWidth, style.utf8)
                           : std::string(app.playing ? "direct" : "-"),
                  isTapped ? CellStyle::plain : CellStyle::faint};
    bar.text.resize(bar.text.size() + static_cast<std::size_t>(barWidth - displayWidth(bar.text)),
                    ' ');
    table.rows.push_back(
        {{printable(app.name), nameStyle},
         {percentText(app.volume), CellStyle::plain, true},
         {app.muted ? "muted" : "-", app.muted ? CellStyle::warning : CellStyle::faint},
         bar,
         {isTapped ? decibelText(level->outputPeak) : "", CellStyle::plain, true},
         {isTapped ? decibelText(level->inputPeak) : "", CellStyle::faint, true},
         {outputText(app, state)}});
  }
  std::string text = fitted(head, style.width > 0 ? style.width : 1000) + "\n\n" +
                     table.text(style.colour, style.width);
  const std::size_t hidden = state.apps.size() + 1 - table.rows.size();
  if (state.apps.empty()) {
    text += "No app plays, nor did one lately.\n";
  } else if (hidden > 0) {
    text += "and " + std::to_string(hidden) + " more\n";
  }
  return text;
}

}  // namespace plemora
