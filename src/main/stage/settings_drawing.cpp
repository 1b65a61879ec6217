#include <iterator>

#include "main/stage/desktop_drawing.h"
#include "main/stage/drawing_parts.h"

namespace plemora {

namespace {

using Pane = StageSettings::Pane;

struct SidebarEntry {
  Pane pane;
  const char* title;
  const char* symbol;
  Color color;
};

constexpr SidebarEntry entries[] = {
    {Pane::general, "General", "gearshape.fill", {0.56, 0.56, 0.58}},
    {Pane::accessibility, "Accessibility", "accessibility", {0.04, 0.52, 1}},
    {Pane::menuBar, "Menu Bar", "menubar.rectangle", {0.36, 0.36, 0.4}},
    {Pane::audioCapture, "Privacy & Security", "hand.raised.fill", {0.19, 0.45, 0.95}},
    {Pane::sound, "Sound", "speaker.wave.3.fill", {1, 0.22, 0.37}},
};

void addSidebar(Drawing& drawing, const Rect& sidebar, Pane pane, const Palette& palette) {
  double y = sidebar.y + StageSettings::titleBarHeight;
  const Rect field{sidebar.x + 10, y, sidebar.width - 20, 30};
  drawing.push_back(FillMark{field, 15, palette.faint, {}});
  drawing.push_back(SymbolMark{
      {field.x + 9, field.midY() - 7, 14, 14}, "magnifyingglass", palette.secondary, {}});
  drawing.push_back(TextMark{
      {field.x + 29, field.y, 120, 30}, "Search", palette.secondary, 13, 400, TextPlace::left});
  y += 44;
  for (const SidebarEntry& entry : entries) {
    const Rect row{sidebar.x + 10, y, sidebar.width - 20, 32};
    const bool isChosen = entry.pane == pane;
    if (isChosen) {
      drawing.push_back(FillMark{row, 9, palette.accent, {}});
    }
    const Rect tile{row.x + 8, row.midY() - 10, 20, 20};
    drawing.push_back(FillMark{tile, 6, entry.color, {}});
    drawing.push_back(SymbolMark{centered(tile, 14, 14), entry.symbol, Color::white(), {}});
    drawing.push_back(TextMark{{tile.maxX() + 8, row.y, row.width - 44, row.height},
                               entry.title,
                               isChosen ? Color::white() : palette.text,
                               13,
                               400,
                               TextPlace::left});
    y += 34;
  }
}

std::string hintOf(Pane pane) {
  switch (pane) {
    case Pane::audioCapture:
      return "Allow the applications below to record the audio of this computer.";
    case Pane::accessibility:
      return "Allow the applications below to control this computer.";
    case Pane::menuBar:
      return "Choose which applications may put items into the menu bar.";
    case Pane::sound:
      return "Choose a device for sound output.";
    case Pane::general:
      break;
  }
  return "Manage the overall setup of this computer.";
}

}  // namespace

Drawing settingsDrawing(StageDesktop& desktop) {
  const StageSettings& settings = desktop.settings;
  const Palette& palette = Palette::of(desktop.appearance.isDark());
  const Rect frame = desktop.space.flipped(settings.frame());
  Drawing drawing;
  addWindow(drawing, frame, palette);
  const Rect sidebar =
      Rect{frame.x, frame.y, StageSettings::sidebarWidth, frame.height}.inset(8, 8);
  drawing.push_back(FillMark{sidebar, 11, palette.sidebar, {}});
  drawing.push_back(StrokeMark{sidebar, 11, palette.line, 1});
  addWindowButtons(drawing, desktop.space.flipped(settings.closeButton()));
  addSidebar(drawing, sidebar, settings.pane(), palette);

  const double left = frame.x + StageSettings::sidebarWidth + 20;
  const double width = frame.maxX() - 20 - left;
  drawing.push_back(TextMark{{left, frame.y, width, StageSettings::titleBarHeight},
                             settings.title(),
                             palette.text,
                             17,
                             700,
                             TextPlace::left});
  const auto rows = settings.rows();
  Rect group;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Rect row = desktop.space.flipped(settings.rowFrame(i));
    group = i == 0 ? row : Rect{group.x, group.y, group.width, row.maxY() - group.y};
  }
  const double hintY = group.isEmpty() ? frame.y + StageSettings::titleBarHeight : group.y - 30;
  drawing.push_back(TextMark{{left, hintY, width, 22},
                             hintOf(settings.pane()),
                             palette.secondary,
                             12,
                             400,
                             TextPlace::left});
  if (!group.isEmpty()) {
    drawing.push_back(
        FillMark{group, 12, palette.isDark ? Color::white(0.06) : Color::white(0.9), {}});
    drawing.push_back(StrokeMark{group, 12, palette.line, 1});
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Rect row = desktop.space.flipped(settings.rowFrame(i));
    const Rect inner = row.inset(14, 0);
    if (i > 0) {
      drawing.push_back(FillMark{{inner.x, row.y, inner.width, 1}, 0, palette.line, {}});
    }
    drawing.push_back(TextMark{{inner.x, row.y, inner.width - 60, row.height},
                               rows[i].title,
                               palette.text,
                               13,
                               400,
                               TextPlace::left});
    if (settings.pane() != Pane::sound) {
      addSwitch(drawing, {inner.maxX() - 40, row.midY() - 11, 40, 22}, rows[i].isOn, palette);
    } else if (rows[i].isOn) {
      drawing.push_back(
          SymbolMark{{inner.maxX() - 16, row.midY() - 8, 16, 16}, "checkmark", palette.accent, {}});
    }
  }
  return drawing;
}

}  // namespace plemora
