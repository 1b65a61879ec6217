#include "main/ctl/ctl_output.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "main/ctl/volume_text.h"

namespace plemora {

namespace {

using Json = nlohmann::ordered_json;

std::string lines(const Json& value) {
  // Bytes that are no UTF-8 (names come from outside) must not end the program.
  return value.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

Json textOrNull(const std::string& text) {
  return text.empty() ? Json(nullptr) : Json(text);
}

const DeviceState* findDevice(const MixerState& state, const std::string& uid) {
  const auto found = std::find_if(state.devices.begin(), state.devices.end(),
                                  [&](const DeviceState& device) { return device.uid == uid; });
  return found == state.devices.end() ? nullptr : &*found;
}

// A factor as a number people read: 0, 1, 0.25.
std::string factorText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, value > 0 && value < 0.001 ? "%.1e" : "%.4g", value);
  return text;
}

}  // namespace

std::string outputText(const AppState& app, const MixerState& state) {
  if (app.output.empty()) {
    return "default";
  }
  const DeviceState* device = findDevice(state, app.output);
  return device != nullptr ? printable(device->name) : printable(app.output) + " (absent)";
}

std::string appsText(const MixerState& state, const OutputStyle& style) {
  if (state.apps.empty()) {
    return "No app plays, nor did one lately.\n";
  }
  TextTable table;
  table.rows.push_back({{"APP", CellStyle::strong},
                        {"PLAYING", CellStyle::strong},
                        {"VOLUME", CellStyle::strong, true},
                        {"MUTE", CellStyle::strong},
                        {"OUTPUT", CellStyle::strong},
                        {"ID", CellStyle::strong}});
  for (const AppState& app : state.apps) {
    table.rows.push_back(
        {{printable(app.name)},
         {app.playing ? "yes" : "no", app.playing ? CellStyle::plain : CellStyle::faint},
         {percentText(app.volume), CellStyle::plain, true},
         {app.muted ? "muted" : "-", app.muted ? CellStyle::warning : CellStyle::faint},
         {outputText(app, state)},
         {printable(app.id), CellStyle::faint}});
  }
  return table.text(style.colour, style.width);
}

std::string devicesText(const MixerState& state, const OutputStyle& style) {
  if (state.devices.empty()) {
    return "There is no output device.\n";
  }
  TextTable table;
  table.rows.push_back({{"DEVICE", CellStyle::strong},
                        {"DEFAULT", CellStyle::strong},
                        {"TRANSPORT", CellStyle::strong},
                        {"UID", CellStyle::strong}});
  for (const DeviceState& device : state.devices) {
    table.rows.push_back({{printable(device.name)},
                          {device.isDefault ? "*" : ""},
                          {printable(device.transport)},
                          {printable(device.uid), CellStyle::faint}});
  }
  return table.text(style.colour, style.width);
}

std::string appsJson(const MixerState& state) {
  Json rows = Json::array();
  for (const AppState& app : state.apps) {
    rows.push_back({{"id", app.id},
                    {"name", app.name},
                    {"icon", textOrNull(app.icon)},
                    {"playing", app.playing},
                    {"volume", app.volume},
                    {"muted", app.muted},
                    {"output", textOrNull(app.output)},
                    {"outputSymbol", app.outputSymbol},
                    {"routed", app.routed}});
  }
  return lines(rows);
}

std::string devicesJson(const MixerState& state) {
  Json rows = Json::array();
  for (const DeviceState& device : state.devices) {
    rows.push_back({{"uid", device.uid},
                    {"name", device.name},
                    {"symbol", device.symbol},
                    {"transport", device.transport},
                    {"default", device.isDefault}});
  }
  return lines(rows);
}

std::string masterText(const MixerState& state) {
  const DeviceState* device = findDevice(state, state.defaultDevice);
  if (device == nullptr) {
    return "there is no default output device\n";
  }
  const std::string volume =
      state.volume ? percentText(*state.volume) : "no volume that can be set";
  return volume + (state.muted ? ", muted" : "") + "  (" + printable(device->name) + ")\n";
}

std::string audibilityText(const AppState& app, const AudibilityReport& report,
                           const OutputStyle& style) {
  TextTable table;
  for (const FactorReport& factor : report.factors) {
    const bool silences = factor.value == 0;
    table.rows.push_back(
        {{silences ? "> " + printable(factor.name) : "  " + printable(factor.name),
          silences ? CellStyle::warning : CellStyle::plain},
         {"x " + factorText(factor.value), silences ? CellStyle::warning : CellStyle::plain},
         {printable(factor.text)}});
  }
  table.rows.push_back(
      {{"  together", CellStyle::strong}, {"= " + factorText(report.product), CellStyle::strong}});
  return styled(printable(app.name), CellStyle::strong, style.colour) + "  (" + printable(app.id) +
         ")\n" + printable(report.verdict) + "\n" + table.text(style.colour, style.width);
}

}  // namespace plemora
