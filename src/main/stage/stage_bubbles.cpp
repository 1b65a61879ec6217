#include "main/stage/stage_bubbles.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "glass/color_matrix.h"
#include "glass/gaussian_blur.h"
#include "glass/raster.h"
#include "main/stage/drawing_painter.h"
#include "main/stage/picture_resources.h"
#include "main/stage/stage_glass.h"
#include "platform/files.h"

namespace plemora {

namespace {

constexpr const char* folder = "/Applications/Plemora.app/Contents/Resources";

// The module that the masks are drawn for; for others they are stretched.
constexpr double scale = 2;
constexpr int width = 292;  // points
constexpr int height = 64;
constexpr double gap = 12;  // between the two tiles
constexpr double radius = 23;

constexpr float strength = 0.3F;      // at which the styles use a set
constexpr double brightestRim = 0.1;  // alpha of blurred rims that a full mask takes away

struct Set {
  const char* name;
  bool isDark;
  GlassRelease release;
  double blur;  ///< of the overlay, sigma in points
};

constexpr Set sets[] = {{"26.1", true, GlassRelease::macOS26_1, 2},
                        {"26.1.light", false, GlassRelease::macOS26_1, 2},
                        {"26.4", true, GlassRelease::macOS26_4, 3},
                        {"27", true, GlassRelease::macOS27, 3}};

QImage emptyMask() {
  QImage image(static_cast<int>(width * scale), static_cast<int>(height * scale),
               QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

/// Draws white onto an empty mask, in points.
template <typename Draw>
QImage drawn(Draw draw) {
  // There is nothing beyond the module, also for a blur.
  constexpr int around = 32;
  QImage image(static_cast<int>((width + 2 * around) * scale),
               static_cast<int>((height + 2 * around) * scale),
               QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(scale, scale);
  painter.translate(around, around);
  draw(painter);
  return image;
}

QImage blurred(const QImage& image, double sigma) {
  Raster raster(image.width(), image.height());
  for (int y = 0; y < image.height(); ++y) {
    const auto* row = reinterpret_cast<const Pixel*>(image.constScanLine(y));
    std::copy_n(row, image.width(), raster.row(y));
  }
  GaussianBlur(sigma * scale).apply(raster);
  const QImage result = imageOf(raster);
  return result.copy((image.width() - static_cast<int>(width * scale)) / 2,
                     (image.height() - static_cast<int>(height * scale)) / 2,
                     static_cast<int>(width * scale), static_cast<int>(height * scale));
}

/// A mask whose alpha is that function of another's, 0...1, and of how far it is beside the seam,
/// which has been mended already: 0 in it, 1 beside it.
template <typename Change>
QImage changed(const QImage& image, Change change) {
  QImage result = emptyMask();
  for (int y = 0; y < result.height(); ++y) {
    for (int x = 0; x < result.width(); ++x) {
      const double fromSeam = std::abs((x + 0.5) / scale - width / 2.0);
      const double besideSeam = std::clamp((fromSeam - 10) / 12, 0.0, 1.0);
      const double alpha =
          std::clamp(change(qAlpha(image.pixel(x, y)) / 255.0, besideSeam), 0.0, 1.0);
      const int level = static_cast<int>(alpha * 255 + 0.5);
      result.setPixel(x, y, qRgba(level, level, level, level));
    }
  }
  return result;
}

QRectF tile(int index, double inset) {
  const double side = (width - gap) / 2;
  return QRectF(index * (side + gap), 0, side, height).adjusted(inset, inset, -inset, -inset);
}

/// Where the light of the rims is once it has been blurred.
QImage rimsMask(double blur) {
  const GlassRim rim = stageGlassRim(GlassKind::tile);
  const QImage light = drawn([&](QPainter& painter) {
    for (const auto& [inset, alpha] : {std::pair(0.25, rim.top), std::pair(0.75, rim.rest)}) {
      painter.setPen(QPen(QColor::fromRgbF(1, 1, 1, static_cast<float>(alpha)), 0.5));
      for (int i = 0; i < 2; ++i) {
        painter.drawRoundedRect(tile(i, inset), radius - inset, radius - inset);
      }
    }
  });
  return changed(blurred(light, blur), [](double alpha, double besideSeam) {
    return alpha / brightestRim * (0.25 + 0.25 * besideSeam);
  });
}

/// Where the desktop beside the module has been blurred into it.
QImage edgesMask(double blur) {
  const QImage whole = drawn([](QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(0, 0, width, height), radius, radius);
  });
  return changed(blurred(whole, blur),
                 [](double covered, double besideSeam) { return (1 - covered) * besideSeam; });
}

/// The matrix of an entry that comes to that one at the strength of the styles.
nlohmann::json entryMatrix(const ColorMatrix& wanted) {
  auto numbers = nlohmann::json::array();
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    numbers.push_back(identityMatrix[i] + (wanted[i] - identityMatrix[i]) / strength);
  }
  return numbers;
}

ColorMatrix withoutRim() {
  const auto gain = static_cast<float>(1 / (1 - brightestRim));
  const auto offset = static_cast<float>(-brightestRim / (1 - brightestRim));
  return {gain, 0, 0, 0, offset, 0, gain, 0, 0, offset, 0, 0, gain, 0, offset, 0, 0, 0, 1, 0};
}

std::string png(const QImage& image) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return bytes.toStdString();
}

/// The files by their names.
std::map<std::string, std::string> draw() {
  std::map<std::string, std::string> drawn;
  for (const Set& set : sets) {
    const std::string name = set.name;
    const ColorMatrix glass = stageGlassLook(GlassKind::tile, set.isDark, set.release).matrix;
    const nlohmann::json entries = {
        {{"mask", name + "-rims"}, {"matrix", entryMatrix(withoutRim())}},
        {{"mask", name + "-edges"}, {"matrix", entryMatrix(glass)}}};
    drawn[name + ".json"] = entries.dump();
    drawn[name + "-rims.png"] = png(rimsMask(set.blur));
    drawn[name + "-edges.png"] = png(edgesMask(set.blur));
  }
  return drawn;
}

}  // namespace

void StageBubbles::install(PictureResources& resources, Files& files) {
  static const auto all = draw();
  files.makeFolder(folder);
  for (const auto& [name, bytes] : all) {
    const std::string path = std::string(folder) + "/" + name;
    files.writeAtomically(path, bytes);
    resources.paths[name] = path;
  }
}

}  // namespace plemora
