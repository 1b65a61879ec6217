#include "main/stage/skin_pages.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QString>
#include <algorithm>
#include <initializer_list>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "main/stage/skin_stage.h"
#include "skin/look/built_in_styles.h"

namespace plemora {

namespace {

constexpr const char* release = "26.4";  // of the page of layers
constexpr const char* noRim = "rimOuter=0,rimInner=0";

/// What the built-in style of that release says of those keys, and nothing else.
std::string styleWith(std::initializer_list<std::string_view> keys) {
  std::string_view style;
  for (const BuiltInStyle& entry : builtInSkin) {
    if (entry.key == release) {
      style = entry.style;
    }
  }
  std::string result;
  while (!style.empty()) {
    const std::string_view piece = style.substr(0, style.find(','));
    style.remove_prefix(std::min(piece.size() + 1, style.size()));
    for (const std::string_view key : keys) {
      if (piece.substr(0, piece.find('=')) == key) {
        result += (result.empty() ? "" : ",") + std::string(piece);
      }
    }
  }
  return result;
}

/// One more layer than the one before.
struct Step {
  const char* name;
  std::string style;
  std::string look;
  bool isBare = true;
  bool isHovering = false;
};

std::vector<Step> steps() {
  const std::string glass = styleWith({"cc", "r", "sat", "fill"});
  const std::string tuned = styleWith({"cc", "r", "sat", "fill", "m"});
  const std::string mended =
      styleWith({"cc", "r", "sat", "fill", "m", "gm", "gr", "gf", "dilate", "lift", "feather"});
  const std::string whole = mended + "," + styleWith({"bc", "bcr"});
  return {{"1-tiles", "none", noRim},     {"2-glass", glass, noRim},
          {"3-colors", tuned, noRim},     {"4-seam", mended, noRim},
          {"5-bubbles", whole, noRim},    {"6-rim", whole, ""},
          {"7-module", whole, "", false}, {"8-pointer", whole, "", false, true}};
}

void save(const QImage& image, const QString& path) {
  if (!image.save(path, "PNG")) {
    throw std::runtime_error("cannot write " + path.toStdString() +
                             "; choose a folder that can be written to");
  }
}

QImage pictureOf(const Step& step) {
  SkinDesktop desktop;
  desktop.system = release;
  desktop.defaults["skinStyle"] = step.style;
  if (!step.look.empty()) {
    desktop.defaults["look"] = step.look;
  }
  desktop.isBare = step.isBare;
  SkinStage stage(desktop, SkinStage::Module::programs);
  if (step.isHovering) {
    const Rect module = stage.moduleFrame();
    stage.world().desktop.movePointer({module.x + module.width / 4, module.midY()});
    stage.show().advance(0.5);
  }
  return stage.picture();
}

/// One picture above the other.
QImage pair(const QImage& upper, const QImage& lower) {
  QImage both(upper.width(), upper.height() + lower.height(), QImage::Format_RGB32);
  QPainter painter(&both);
  painter.drawImage(0, 0, upper);
  painter.drawImage(0, upper.height(), lower);
  return both;
}

void writeLikeness(const QDir& folder) {
  QFile table(folder.filePath("likeness.md"));
  if (!table.open(QIODevice::WriteOnly | QIODevice::Text)) {
    throw std::runtime_error("cannot write " + table.fileName().toStdString() +
                             "; choose a folder that can be written to");
  }
  table.write(
      "| release | appearance | desktop | seam | edges | inside |\n|---|---|---|---|---|---|\n");
  for (const char* system : {"26.1", "26.4", "27.0"}) {
    for (const bool isDark : {true, false}) {
      for (const NamedWallpaper& entry : stageWallpapers()) {
        const SkinDesktop desktop{.system = system, .isDark = isDark, .wallpaper = entry.wallpaper};
        const QImage theirs = SkinStage(desktop, SkinStage::Module::systems).picture();
        const QImage ours = SkinStage(desktop, SkinStage::Module::programs).picture();
        const SkinDifference found = SkinStage::difference(theirs, ours, desktop.scale);
        const QString name = QString::fromUtf8(entry.name.data(), entry.name.size());
        const char* appearance = isDark ? "dark" : "light";
        table.write(QString("| %1 | %2 | %3 | %4 | %5 | %6 |\n")
                        .arg(system, appearance, name)
                        .arg(found.seam, 0, 'f', 1)
                        .arg(found.edges, 0, 'f', 1)
                        .arg(found.inside, 0, 'f', 1)
                        .toUtf8());
        save(pair(theirs, ours),
             folder.filePath(QString("beside-%1-%2-%3.png").arg(system, appearance, name)));
      }
    }
  }
}

}  // namespace

void writeSkinPages(const std::string& path) {
  const QDir folder(QString::fromStdString(path));
  if (!folder.mkpath(".")) {
    throw std::runtime_error("cannot make the folder " + path + "; choose another one");
  }
  for (const Step& step : steps()) {
    save(pictureOf(step), folder.filePath(QString("layer-") + step.name + ".png"));
  }
  save(SkinStage({.system = release}, SkinStage::Module::systems).picture(),
       folder.filePath("layer-9-system.png"));
  writeLikeness(folder);
}

}  // namespace plemora
