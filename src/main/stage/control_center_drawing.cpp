#include <algorithm>
#include <cctype>
#include <iterator>

#include "adapters/stage/desktop/stage_modules.h"
#include "main/stage/desktop_drawing.h"
#include "main/stage/drawing_parts.h"
#include "main/stage/stage_glass.h"

namespace plemora {

namespace {

constexpr double cornerRadius = 32;
constexpr double sliderCornerRadius = 23;  // of tiles with a slider, and of what stands in for them

/// How a module of the system shows itself.
struct Face {
  std::string_view module;
  std::string_view symbol;
  std::string_view onText;  ///< empty: a press starts it, and it is never on
};

constexpr Face faces[] = {
    {"WiFi", "wifi", "Home"},
    {"Bluetooth", "bluetooth", "On"},
    {"AirDrop", "airdrop", "Contacts Only"},
    {"FocusModes", "moon.fill", "On"},
    {"StageManager", "squares.leading.rectangle", ""},
    {"ScreenMirroring", "rectangle.on.rectangle", ""},
    {"Display", "sun.max.fill", ""},
    {"Sound", "speaker.wave.3.fill", ""},
    {"NowPlaying", "music.note", ""},
    {"Battery", "battery.75", ""},
    {"KeyboardBrightness", "keyboard", ""},
    {"Weather", "cloud.sun.fill", ""},
};

struct PartSymbol {
  std::string_view part;  ///< of a control's name, in lower case
  std::string_view symbol;
};

constexpr PartSymbol controlSymbols[] = {
    {"sound", "speaker.wave.3.fill"},
    {"plemora", "speaker.wave.3.fill"},
    {"lamp", "lightbulb.fill"},
    {"light", "lightbulb.fill"},
    {"door", "lock.fill"},
    {"note", "note.text"},
    {"timer", "timer"},
};

struct TileFace {
  std::string title;
  std::string symbol;  // empty: the first letter of the title
  std::string onText;
};

std::string lowered(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char letter) {
    return static_cast<char>(std::tolower(letter));
  });
  return text;
}

TileFace faceOfControl(const StageTileControl& control) {
  const std::string name = lowered(control.displayName + " " + control.kind);
  const auto* found = std::ranges::find_if(
      controlSymbols, [&](const PartSymbol& entry) { return name.find(entry.part) != name.npos; });
  return {control.displayName,
          found != std::end(controlSymbols) ? std::string(found->symbol) : std::string(),
          {}};
}

TileFace faceOfModule(const std::string& module) {
  const StageModule* known = findStageModule(module);
  const auto* face = std::ranges::find(faces, module, &Face::module);
  TileFace result{known != nullptr ? std::string(known->name) : module, {}, {}};
  if (face != std::end(faces)) {
    result.symbol = face->symbol;
    result.onText = face->onText;
  }
  return result;
}

TileFace faceOf(const StageTile& tile) {
  return tile.control ? faceOfControl(*tile.control) : faceOfModule(tile.module);
}

/// Adds tiles as they are in one state of Control Center.
class TileDrawing {
 public:
  TileDrawing(Drawing& drawing, StageDesktop& desktop)
      : drawing_(drawing),
        center_(desktop.controlCenter),
        space_(desktop.space),
        extensions_(desktop.extensions),
        palette_(Palette::of(desktop.appearance.isDark())),
        release_(glassReleaseOf(desktop.systemInfo.version())) {}

  /// global: y up.
  void add(const StageTile& tile, const Rect& global) {
    const Rect rect = space_.flipped(global);
    if (isBlank(tile)) {
      addSheet(rect, sliderCornerRadius);
      return;
    }
    const TileFace face = faceOf(tile);
    const bool isOn = !face.onText.empty() && center_.isOn(tile.module);
    if (tile.size.columns == 1) {
      addRound(rect, face, isOn);
    } else if (StageControlCenter::hasSlider(tile)) {
      addSliderTile(tile, rect, face);
    } else if (tile.size.rows > 1) {
      addSquare(rect, face, isOn);
    } else {
      addWide(rect, face, isOn);
    }
  }

  void addBadge(const Rect& global) {
    const Rect badge = space_.flipped(StageControlPanel::removeBadge(global));
    drawing_.push_back(ShadowMark{badge, badge.height / 2, 4, 1, 0.3});
    drawing_.push_back(FillMark{badge, badge.height / 2, Color::gray(0.88), {}});
    const double side = badge.width * 0.6;
    drawing_.push_back(SymbolMark{centered(badge, side, side), "minus", Color::gray(0.15), {}});
  }

 private:
  void addGlyph(const Rect& rect, const TileFace& face, const Color& color) {
    if (face.symbol.empty()) {
      drawing_.push_back(TextMark{rect.inset(-8, -8), face.title.substr(0, 1), color,
                                  rect.height * 0.9, 600, TextPlace::center});
      return;
    }
    drawing_.push_back(SymbolMark{rect, face.symbol, color, {}});
  }

  bool isBlank(const StageTile& tile) const {
    const StageControlExtension* extension =
        tile.control ? extensions_.find(tile.control->extensionID, tile.control->kind) : nullptr;
    return extension != nullptr && extension->isBlank && extension->isBlank();
  }

  void addSheet(const Rect& rect, double corner = cornerRadius) {
    const double radius = std::min(corner, rect.height / 2);
    drawing_.push_back(ShadowMark{rect, radius, 10, 3, 0.16});
    drawing_.push_back(GlassMark{rect, radius, GlassKind::tile, palette_.isDark, release_});
  }

  void addRound(const Rect& rect, const TileFace& face, bool isOn) {
    addSheet(rect);
    if (isOn) {
      drawing_.push_back(FillMark{rect.inset(0.5, 0.5), rect.width / 2, palette_.accent, {}});
    }
    addGlyph(centered(rect, 26, 26), face, isOn ? Color::white() : palette_.text);
  }

  void addDisc(const Rect& disc, const TileFace& face, bool isOn) {
    const Color off = palette_.isDark ? Color::white(0.16) : Color::black(0.1);
    drawing_.push_back(FillMark{disc, disc.width / 2, isOn ? palette_.accent : off, {}});
    addGlyph(centered(disc, disc.width * 0.56, disc.width * 0.56), face,
             isOn ? Color::white() : palette_.text);
  }

  void addWide(const Rect& rect, const TileFace& face, bool isOn) {
    addSheet(rect);
    const Rect disc{rect.x + 12, rect.midY() - 20, 40, 40};
    addDisc(disc, face, isOn);
    Rect words{disc.maxX() + 10, rect.midY() - 17, rect.maxX() - disc.maxX() - 20, 17};
    const std::string state = face.onText.empty() ? "" : isOn ? face.onText : "Off";
    if (state.empty()) {
      addTitle({words.x, rect.midY() - 17, words.width, 34}, face.title);
      return;
    }
    drawing_.push_back(TextMark{words, face.title, palette_.text, 13, 600, TextPlace::left});
    drawing_.push_back(
        TextMark{words.offset(0, 17), state, palette_.secondary, 12, 400, TextPlace::left});
  }

  /// In one line, or in two where it is long.
  void addTitle(const Rect& place, const std::string& title) {
    constexpr double letterWidth = 7.6;  // about
    const std::size_t space = title.find(' ');
    const bool isLong = letterWidth * static_cast<double>(title.size()) > place.width;
    if (!isLong || space == std::string::npos) {
      drawing_.push_back(TextMark{place, title, palette_.text, 13, 600, TextPlace::left});
      return;
    }
    const Rect line{place.x, place.y, place.width, place.height / 2};
    drawing_.push_back(
        TextMark{line, title.substr(0, space), palette_.text, 13, 600, TextPlace::left});
    drawing_.push_back(TextMark{line.offset(0, line.height), title.substr(space + 1), palette_.text,
                                13, 600, TextPlace::left});
  }

  void addSquare(const Rect& rect, const TileFace& face, bool isOn) {
    addSheet(rect);
    addDisc({rect.x + 16, rect.y + 16, 44, 44}, face, isOn);
    const Rect words{rect.x + 16, rect.maxY() - 52, rect.width - 32, 18};
    drawing_.push_back(TextMark{words, face.title, palette_.text, 13, 600, TextPlace::left});
    const std::string state = face.onText.empty() ? "Not Playing" : isOn ? face.onText : "Off";
    drawing_.push_back(
        TextMark{words.offset(0, 18), state, palette_.secondary, 12, 400, TextPlace::left});
  }

  void addSliderTile(const StageTile& tile, const Rect& rect, const TileFace& face) {
    addSheet(rect, sliderCornerRadius);
    const bool isSound = tile.module == "Sound";
    const bool isHeadphones = isSound && center_.isOutputHeadphones();
    const bool isWide = rect.width > 200;
    const Color ink = palette_.isDark ? Color::white() : Color::black(0.85);
    const Color faded{ink.red, ink.green, ink.blue, ink.alpha * 0.75};
    const double titleSize = release_ == GlassRelease::macOS26_1 ? 13 : 12.4;
    const Rect title{rect.x + 16, rect.y + 11, 60, 15};
    drawing_.push_back(TextMark{title, face.title, ink, titleSize, 500, TextPlace::left});
    const double chevron = isSound ? 62 : 67;  // clear of the title
    addSymbol({rect.x + chevron, title.midY()}, 16, "chevron.right", faded);
    const Rect slider = space_.flipped(center_.slider(tile));
    addTrack(slider, center_.sliderValue(tile));
    addSymbol({slider.x - 13, slider.midY()}, 20,
              isHeadphones ? "headphones"
              : isSound    ? "speaker.fill"
                           : "sun.min.fill",
              ink);
    if (isWide && !isHeadphones) {
      addSymbol({slider.maxX() + 17, slider.midY()}, 20,
                isSound ? "speaker.wave.3.fill" : "sun.max.fill", ink);
    }
    if (isWide && isSound) {
      const Rect disc{rect.maxX() - 40, rect.y + 29, 26, 26};
      drawing_.push_back(
          FillMark{disc, 13, palette_.isDark ? Color::white(0.22) : Color::black(0.85 * 0.08), {}});
      addSymbol({disc.midX(), disc.midY()}, 15, "airplay.audio", ink);
    }
  }

  void addSymbol(const Point& middle, double side, const char* name, const Color& color) {
    drawing_.push_back(
        SymbolMark{{middle.x - side / 2, middle.y - side / 2, side, side}, name, color, {}});
  }

  /// The track of Control Center's own sliders, with its knob.
  void addTrack(const Rect& place, double value) {
    const Rect track = centered(place, place.width, 4);
    const double part = std::clamp(value, 0.0, 1.0);
    drawing_.push_back(FillMark{track, 2, trackColor(), {}});
    drawing_.push_back(FillMark{{track.x, track.y, std::max(track.width * part, 4.0), 4},
                                2,
                                palette_.isDark ? Color::white() : Color::black(0.7),
                                {}});
    constexpr double knobWidth = 20;
    const double offset = std::max(track.width * part - knobWidth / 2, 0.0);
    const Rect knob{track.x + offset, track.midY() - 7, knobWidth, 14};
    drawing_.push_back(ShadowMark{knob, 7, 3, 1, 0.25});
    drawing_.push_back(FillMark{knob, 7, Color::white(), {}});
  }

  Color trackColor() const {
    if (release_ == GlassRelease::macOS26_1 || !palette_.isDark) {
      return Color::black(palette_.isDark ? 0.35 : 0.12);
    }
    return Color::white(release_ == GlassRelease::macOS27 ? 0.083 : 0.14);
  }

  Drawing& drawing_;
  const StageControlCenter& center_;
  const StageSpace& space_;
  const StageExtensions& extensions_;
  const Palette& palette_;
  GlassRelease release_;
};

void addEditButton(Drawing& drawing, const Rect& button, bool isEditing, const Palette& palette,
                   GlassRelease release) {
  drawing.push_back(ShadowMark{button, button.height / 2, 8, 2, 0.14});
  if (isEditing) {
    addButton(drawing, button, "Done", true, palette);
    return;
  }
  drawing.push_back(GlassMark{button, button.height / 2, GlassKind::tile, palette.isDark, release});
  drawing.push_back(TextMark{button, "Edit Controls", palette.text, 13, 500, TextPlace::center});
}

}  // namespace

Drawing controlCenterDrawing(StageDesktop& desktop) {
  const StageControlCenter& center = desktop.controlCenter;
  const StageControlPanel panel = center.panel();
  Drawing drawing;
  TileDrawing tiles(drawing, desktop);
  const auto& dragged = center.dragged();
  for (const StageTile& tile : center.shownTiles()) {
    if (dragged && dragged->first == tile.id) {
      continue;
    }
    tiles.add(tile, panel.tile(tile));
    if (center.isEditing()) {
      tiles.addBadge(panel.tile(tile));
    }
  }
  addEditButton(drawing, desktop.space.flipped(panel.editButton), center.isEditing(),
                Palette::of(desktop.appearance.isDark()),
                glassReleaseOf(desktop.systemInfo.version()));
  if (dragged) {
    if (const StageTile* tile = center.grid().tile(dragged->first)) {
      const Size size = panel.tile(*tile).size();
      tiles.add(*tile,
                {dragged->second.x, dragged->second.y - size.height, size.width, size.height});
    }
  }
  return drawing;
}

Drawing editingDrawing(const StageWindowRecord& window, StageDesktop& desktop) {
  const Palette& palette = Palette::of(desktop.appearance.isDark());
  const Rect frame = desktop.space.flipped(window.frame);
  Drawing drawing{GlassMark{frame, 0, GlassKind::editing, palette.isDark}};
  if (desktop.screens.screens().get().empty() || window.frame != desktop.space.main()) {
    return drawing;
  }
  const auto gallery = desktop.controlCenter.gallery();
  for (std::size_t i = 0; i < gallery.size(); ++i) {
    const Rect entry =
        desktop.space.flipped(StageControlPanel::galleryEntry(desktop.space.main(), i));
    if (i == 0) {
      drawing.push_back(TextMark{{entry.x, entry.y - 52, 400, 30},
                                 "Add Controls",
                                 palette.text,
                                 20,
                                 700,
                                 TextPlace::left});
    }
    const double radius = std::min(entry.height / 2, 26.0);
    drawing.push_back(GlassMark{entry, radius, GlassKind::tile, palette.isDark,
                                glassReleaseOf(desktop.systemInfo.version())});
    const Rect plus{entry.x + 12, entry.midY() - 10, 20, 20};
    drawing.push_back(FillMark{plus, 10, Color{0.19, 0.82, 0.35}, {}});
    drawing.push_back(SymbolMark{centered(plus, 13, 13), "plus", Color::white(), {}});
    drawing.push_back(
        TextMark{{plus.maxX() + 10, entry.y, entry.maxX() - plus.maxX() - 22, entry.height},
                 gallery[i],
                 palette.text,
                 13,
                 500,
                 TextPlace::left});
  }
  return drawing;
}

}  // namespace plemora
