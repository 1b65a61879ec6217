#include "main/stage/drawing_parts.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace plemora {

namespace {

constexpr double windowRadius = 16;

constexpr Palette dark{.isDark = true,
                       .text = Color::white(0.92),
                       .secondary = Color::white(0.58),
                       .faint = Color::white(0.14),
                       .line = Color::white(0.1),
                       .window = Color::gray(0.13),
                       .sidebar = Color::gray(0.17)};
constexpr Palette light{.isDark = false,
                        .text = Color::black(0.86),
                        .secondary = Color::black(0.52),
                        .faint = Color::black(0.09),
                        .line = Color::black(0.1),
                        .window = Color::gray(0.97),
                        .sidebar = Color::gray(0.92)};

struct AppSymbol {
  std::string_view part;  // of the name, in lower case
  std::string_view symbol;
};

constexpr AppSymbol appSymbols[] = {
    {"music", "music.note"},
    {"brows", "safari.fill"},
    {"safari", "safari.fill"},
    {"video", "film"},
    {"movie", "film"},
    {"tv", "tv"},
    {"call", "phone.fill"},
    {"phone", "phone.fill"},
    {"game", "gamecontroller.fill"},
    {"settings", "gearshape.fill"},
    {"plemora", "speaker.wave.3.fill"},
    {"note", "note.text"},
    {"podcast", "headphones"},
    {"finder", "macwindow"},
};

}  // namespace

const Palette& Palette::of(bool isDark) {
  return isDark ? dark : light;
}

void addWindow(Drawing& drawing, const Rect& frame, const Palette& palette) {
  drawing.push_back(ShadowMark{frame, windowRadius, 26, 10, 0.42});
  drawing.push_back(FillMark{frame, windowRadius, palette.window, {}});
  drawing.push_back(
      StrokeMark{frame, windowRadius, palette.isDark ? Color::white(0.16) : Color::black(0.12), 1});
}

void addWindowButtons(Drawing& drawing, const Rect& closeButton) {
  const Color colors[] = {{1, 0.37, 0.34}, {1, 0.74, 0.18}, {0.16, 0.79, 0.25}};
  for (int i = 0; i < 3; ++i) {
    const Rect button = centered(closeButton, 13, 13).offset(21 * i, 0);
    drawing.push_back(FillMark{button, 7, colors[i], {}});
    drawing.push_back(StrokeMark{button, 7, Color::black(0.14), 0.75});
  }
}

void addSwitch(Drawing& drawing, const Rect& place, bool isOn, const Palette& palette) {
  drawing.push_back(FillMark{place, place.height / 2, isOn ? palette.accent : palette.faint, {}});
  const double width = place.height * 1.5 - 4;
  const double x = isOn ? place.maxX() - width - 2 : place.x + 2;
  const Rect knob{x, place.y + 2, width, place.height - 4};
  drawing.push_back(FillMark{knob, knob.height / 2, Color::white(), {}});
}

void addSlider(Drawing& drawing, const Rect& place, double value, const Palette& palette) {
  const double part = std::clamp(value, 0.0, 1.0);
  const Rect track = centered(place, place.width, 6);
  drawing.push_back(FillMark{track, 3, palette.faint, {}});
  const double knobWidth = 26;
  const double offset = part * std::max(place.width - knobWidth, 0.0);
  drawing.push_back(FillMark{{track.x, track.y, offset + knobWidth / 2, track.height},
                             3,
                             palette.isDark ? Color::white(0.95) : palette.accent,
                             {}});
  const Rect knob{track.x + offset, track.midY() - 8, knobWidth, 16};
  drawing.push_back(ShadowMark{knob, 8, 4, 1, 0.3});
  drawing.push_back(FillMark{knob, 8, Color::white(), {}});
}

void addButton(Drawing& drawing, const Rect& place, std::string title, bool isDefault,
               const Palette& palette) {
  drawing.push_back(
      FillMark{place, place.height / 2, isDefault ? palette.accent : palette.faint, {}});
  drawing.push_back(TextMark{place, std::move(title), isDefault ? Color::white() : palette.text, 13,
                             500, TextPlace::center});
}

Rect centered(const Rect& in, double width, double height) {
  return {in.midX() - width / 2, in.midY() - height / 2, width, height};
}

std::string symbolOfApp(std::string_view name) {
  std::string lower(name);
  std::ranges::transform(lower, lower.begin(),
                         [](unsigned char letter) { return std::tolower(letter); });
  const auto* found = std::ranges::find_if(
      appSymbols, [&](const AppSymbol& entry) { return lower.find(entry.part) != lower.npos; });
  return found != std::end(appSymbols) ? std::string(found->symbol) : std::string();
}

}  // namespace plemora
