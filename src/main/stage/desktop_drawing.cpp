#include "main/stage/desktop_drawing.h"

#include <chrono>
#include <ctime>

#include "main/stage/drawing_parts.h"

namespace plemora {

namespace {

constexpr double markSide = 16;
constexpr const char* clockIdentifier = "com.apple.menuextra.clock";

std::string timeText(WallTime time) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  char text[40];
  const std::size_t length = std::strftime(text, sizeof text, "%a %d %b  %H:%M", &parts);
  return {text, length};
}

/// What stands at the left of the menu bar: the name of the app in front, then menus.
void addMenuTitles(Drawing& drawing, const Rect& bar, StageDesktop& desktop) {
  const Palette& palette = Palette::of(desktop.appearance.isDark());
  std::string front = "Finder";
  const std::int32_t pid = desktop.workspace.frontmost().get();
  for (const RunningApplication& app : desktop.workspace.runningApplications()) {
    if (app.pid == pid) {
      front = app.localizedName.value_or(front);
    }
  }
  double x = bar.x + 16;
  drawing.push_back(SymbolMark{
      {x, bar.midY() - markSide / 2, markSide, markSide}, "macwindow", palette.text, {}});
  x += markSide + 14;
  const double letter = 8.2;
  const auto add = [&](const std::string& title, int weight) {
    const double width = letter * static_cast<double>(title.size()) + 10;
    drawing.push_back(
        TextMark{{x, bar.y, width, bar.height}, title, palette.text, 13, weight, TextPlace::left});
    x += width + 4;
  };
  add(front, 700);
  for (const char* title : {"File", "Edit", "View", "Window", "Help"}) {
    add(title, 500);
  }
}

}  // namespace

Drawing drawingOf(const StageWindowRecord& window, StageDesktop& desktop) {
  switch (window.kind) {
    case StageWindowKind::menuBar:
      return menuBarDrawing(window, desktop);
    case StageWindowKind::statusItem:
      if (const auto* item = std::get_if<const StageStatusItem*>(&window.model)) {
        return statusItemDrawing(**item, desktop);
      }
      return {};
    case StageWindowKind::menu:
      return menuDrawing(desktop.menuBar.menu(), desktop);
    case StageWindowKind::dock:
      return dockDrawing(desktop);
    case StageWindowKind::player:
      if (const auto* player = std::get_if<const StagePlayer*>(&window.model)) {
        return playerDrawing(**player, desktop);
      }
      return {};
    case StageWindowKind::prompt:
      return promptDrawing(desktop);
    case StageWindowKind::settings:
      return settingsDrawing(desktop);
    case StageWindowKind::controlCenter:
      return controlCenterDrawing(desktop);
    case StageWindowKind::controlCenterEditing:
      return editingDrawing(window, desktop);
    case StageWindowKind::program:
      return {};
  }
  return {};
}

Drawing menuBarDrawing(const StageWindowRecord& window, StageDesktop& desktop) {
  const Rect bar = desktop.space.flipped(window.frame);
  Drawing drawing{GlassMark{bar, 0, GlassKind::bar, desktop.appearance.isDark()}};
  addMenuTitles(drawing, bar, desktop);
  return drawing;
}

Drawing statusItemDrawing(const StageStatusItem& item, StageDesktop& desktop) {
  const Palette& palette = Palette::of(desktop.appearance.isDark());
  const Rect frame = desktop.space.flipped(item.frame);
  Drawing drawing;
  if (item.isHighlighted) {
    const Rect capsule = centered(frame, frame.width - 2, std::min(frame.height, 22.0));
    drawing.push_back(FillMark{capsule, capsule.height / 2, palette.faint, {}});
  }
  if (item.image) {
    const double side = std::min(item.image->pointSize + 4, frame.height);
    drawing.push_back(SymbolMark{centered(frame, side, side), item.image->name, palette.text,
                                 item.image->variableValue});
  } else {
    const std::string text =
        item.identifier == clockIdentifier ? timeText(desktop.clock.now()) : item.text;
    drawing.push_back(TextMark{frame, text, palette.text, 13, 500, TextPlace::center});
  }
  return drawing;
}

Drawing menuDrawing(const StageMenu& menu, StageDesktop& desktop) {
  const Palette& palette = Palette::of(desktop.appearance.isDark());
  const Rect frame = desktop.space.flipped(menu.frame());
  Drawing drawing{ShadowMark{frame, 12, 20, 8, 0.4},
                  GlassMark{frame, 12, GlassKind::menu, palette.isDark}};
  for (std::size_t i = 0; i < menu.items().size(); ++i) {
    const MenuItem& item = menu.items()[i];
    const Rect row = desktop.space.flipped(menu.itemFrame(i));
    const Rect inner = row.inset(12, 0);
    if (item.title.empty()) {
      drawing.push_back(FillMark{centered(inner, inner.width, 1), 0, palette.line, {}});
      continue;
    }
    const bool isChosen = menu.highlighted() == i;
    if (isChosen) {
      drawing.push_back(FillMark{row.inset(5, 0), 7, palette.accent, {}});
    }
    const Color text = isChosen ? Color::white() : palette.text;
    drawing.push_back(TextMark{inner, item.title, text, 13, 400, TextPlace::left});
    if (!item.keyEquivalent.empty()) {
      std::string key = item.keyEquivalent;
      key[0] = static_cast<char>(key[0] >= 'a' && key[0] <= 'z' ? key[0] - 'a' + 'A' : key[0]);
      drawing.push_back(TextMark{inner, "⌘" + key, isChosen ? text : palette.secondary, 13, 400,
                                 TextPlace::right});
    }
  }
  return drawing;
}

Drawing dockDrawing(StageDesktop& desktop) {
  const StageDock& dock = desktop.dock;
  const Rect frame = desktop.space.flipped(dock.frame());
  const bool isDark = desktop.appearance.isDark();
  Drawing drawing{ShadowMark{frame, 20, 16, 4, 0.25},
                  GlassMark{frame, 20, GlassKind::dock, isDark}};
  const auto icons = dock.icons();
  for (std::size_t i = 0; i < icons.size(); ++i) {
    const Rect icon = desktop.space.flipped(dock.iconFrame(i));
    const std::string name = icons[i].localizedName.value_or("?");
    drawing.push_back(AppIconMark{icon, name, symbolOfApp(name)});
    drawing.push_back(FillMark{{icon.midX() - 2, icon.maxY() + 1, 4, 4},
                               2,
                               isDark ? Color::white(0.8) : Color::black(0.6),
                               {}});
  }
  return drawing;
}

Drawing promptDrawing(StageDesktop& desktop) {
  const StagePrompt& prompt = desktop.prompt;
  const Palette& palette = Palette::of(desktop.appearance.isDark());
  const Rect frame = desktop.space.flipped(prompt.frame());
  Drawing drawing{ShadowMark{frame, 24, 30, 12, 0.45},
                  GlassMark{frame, 24, GlassKind::menu, palette.isDark}};
  drawing.push_back(
      AppIconMark{{frame.midX() - 24, frame.y + 16, 48, 48}, "Plemora", symbolOfApp("Plemora")});
  // The question in short lines.
  const double top = frame.y + 72;
  const double bottom = desktop.space.flipped(prompt.allowButton()).y;
  constexpr std::size_t longest = 34;
  std::string rest = prompt.text();
  for (double y = top; !rest.empty() && y + 17 <= bottom; y += 17) {
    std::size_t end = rest.size();
    if (end > longest) {
      const std::size_t space = rest.rfind(' ', longest);
      end = space == std::string::npos || space == 0 ? longest : space;
    }
    drawing.push_back(TextMark{{frame.x + 14, y, frame.width - 28, 17},
                               rest.substr(0, end),
                               palette.text,
                               12,
                               y == top ? 600 : 400,
                               TextPlace::center});
    rest.erase(0, end < rest.size() && rest[end] == ' ' ? end + 1 : end);
  }
  addButton(drawing, desktop.space.flipped(prompt.denyButton()), prompt.denyTitle(), false,
            palette);
  addButton(drawing, desktop.space.flipped(prompt.allowButton()), prompt.allowTitle(), true,
            palette);
  return drawing;
}

Drawing playerDrawing(const StagePlayer& player, StageDesktop& desktop) {
  const Palette& palette = Palette::of(desktop.appearance.isDark());
  const Rect frame = desktop.space.flipped(player.frame);
  Drawing drawing;
  addWindow(drawing, frame, palette);
  addWindowButtons(drawing, {frame.x + 14, frame.y + 12, 13, 13});
  drawing.push_back(TextMark{{frame.x + 80, frame.y, frame.width - 160, 38},
                             player.name,
                             palette.secondary,
                             13,
                             600,
                             TextPlace::center});
  const Rect button = desktop.space.flipped(StagePlayers::button(player));
  const double side = 60;
  drawing.push_back(AppIconMark{
      {frame.x + 16, button.midY() - side / 2, side, side}, player.name, symbolOfApp(player.name)});
  const double left = button.maxX() + 14;
  const Rect words{left, button.midY() + 2, std::max(0.0, frame.maxX() - 16 - left), 18};
  drawing.push_back(TextMark{words, std::to_string(static_cast<int>(player.frequency)) + " Hz",
                             palette.secondary, 12, 400, TextPlace::left});
  // The wave stands for what plays; paused it lies flat.
  const int bars = static_cast<int>(words.width / 6);
  for (int i = 0; i < bars; ++i) {
    const double rise = player.isPlaying ? 4 + ((i * 7 + 3) % 5) * 3.2 : 2;
    drawing.push_back(FillMark{{words.x + 6 * i, words.y - 10 - rise / 2, 3, rise},
                               1.5,
                               player.isPlaying ? palette.accent : palette.faint,
                               {}});
  }
  drawing.push_back(FillMark{button, button.height / 2, palette.faint, {}});
  const double glyph = std::min(button.width, button.height) * 0.5;
  drawing.push_back(SymbolMark{centered(button, glyph, glyph),
                               player.isPlaying ? "pause.fill" : "play.fill",
                               palette.text,
                               {}});
  return drawing;
}

}  // namespace plemora
