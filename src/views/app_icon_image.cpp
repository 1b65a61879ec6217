#include "views/app_icon_image.h"

#include <QFileInfo>
#include <QFont>
#include <QIcon>
#include <QImageReader>
#include <QLinearGradient>
#include <QPainter>
#include <QSvgRenderer>
#include <QTextBoundaryFinder>
#include <algorithm>

namespace plemora {

namespace {

constexpr qint64 largestFile = 64 << 20;
constexpr qint64 mostPixels = 24'000'000;

QImage canvas(QSize pixels) {
  QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  return image;
}

QImage drawnVector(const QString& path, QSize pixels) {
  QSvgRenderer renderer(path);
  if (!renderer.isValid()) {
    return {};
  }
  QImage image = canvas(pixels);
  QPainter painter(&image);
  renderer.setAspectRatioMode(Qt::KeepAspectRatio);
  renderer.render(&painter);
  return image;
}

/// Empty unless the file is a picture of a reasonable size. A pipe or a device is never opened.
QImage readFile(const QString& path, QSize pixels) {
  const QFileInfo file(path);
  if (!file.isFile() || file.size() > largestFile) {
    return {};
  }
  const QString suffix = file.suffix().toLower();
  if (suffix == "svg" || suffix == "svgz") {
    return drawnVector(path, pixels);
  }
  QImageReader reader(path);
  reader.setDecideFormatFromContent(true);
  const QSize size = reader.size();
  if (size.isEmpty() || static_cast<qint64>(size.width()) * size.height() > mostPixels) {
    return {};
  }
  // Some formats decode straight to a smaller size; twice what is shown keeps the scaling smooth.
  const QSize enough = size.scaled(pixels * 2, Qt::KeepAspectRatio);
  if (enough.width() < size.width()) {
    reader.setScaledSize(enough.expandedTo({1, 1}));
  }
  return reader.read();
}

QImage fromTheme(const QString& name, QSize pixels) {
  const QIcon icon = QIcon::fromTheme(name);
  return icon.isNull() ? QImage() : icon.pixmap(pixels, 1.0).toImage();
}

QString firstLetter(const QString& name) {
  const QString text = name.trimmed();
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  const auto end = finder.toNextBoundary();
  return end > 0 ? text.left(end).toUpper() : QString();
}

/// A rounded tile in a colour of the app's own with its first letter.
QImage letterTile(const QString& name, QSize pixels) {
  QImage image = canvas(pixels);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const double side = std::min(pixels.width(), pixels.height()) * 0.84;
  const QRectF tile((pixels.width() - side) / 2, (pixels.height() - side) / 2, side, side);
  unsigned hue = 7;
  for (const QChar character : name) {
    hue = hue * 31 + character.unicode();
  }
  const double turn = hue % 360 / 360.0;
  QLinearGradient gradient(tile.topLeft(), tile.bottomLeft());
  gradient.setColorAt(0, QColor::fromHsvF(static_cast<float>(turn), 0.42f, 0.86f));
  gradient.setColorAt(1, QColor::fromHsvF(static_cast<float>(turn), 0.55f, 0.66f));
  painter.setPen(Qt::NoPen);
  painter.setBrush(gradient);
  painter.drawRoundedRect(tile, side * 0.24, side * 0.24);
  QFont font;
  font.setPixelSize(std::max(static_cast<int>(side * 0.56), 1));
  font.setWeight(QFont::DemiBold);
  painter.setFont(font);
  painter.setPen(QColor(255, 255, 255, 235));
  painter.drawText(tile, Qt::AlignCenter, firstLetter(name));
  return image;
}

QImage fitted(const QImage& picture, QSize pixels) {
  if (picture.size() == pixels) {
    return picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  }
  const QImage scaled =
      picture.convertToFormat(QImage::Format_ARGB32_Premultiplied)
          .scaled(picture.size().scaled(pixels, Qt::KeepAspectRatio).expandedTo({1, 1}),
                  Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  QImage image = canvas(pixels);
  QPainter painter(&image);
  painter.drawImage((pixels.width() - scaled.width()) / 2, (pixels.height() - scaled.height()) / 2,
                    scaled);
  return image;
}

void desaturate(QImage& image, double saturation) {
  // Works on premultiplied colours: a grey of the same luminance is linear in them.
  const int kept = static_cast<int>(std::clamp(saturation, 0.0, 1.0) * 256);
  const auto mixed = [kept](int component, int gray) {
    return (component * kept + gray * (256 - kept)) >> 8;
  };
  for (int y = 0; y < image.height(); ++y) {
    auto* pixel = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < image.width(); ++x) {
      const QRgb color = pixel[x];
      const int gray = qGray(color);
      pixel[x] = qRgba(mixed(qRed(color), gray), mixed(qGreen(color), gray),
                       mixed(qBlue(color), gray), qAlpha(color));
    }
  }
}

}  // namespace

QImage appIconImage(const AppIconRequest& request) {
  if (request.pixels.isEmpty()) {
    return {};
  }
  const QSize pixels = request.pixels.boundedTo({2048, 2048});
  QImage picture;
  if (QFileInfo(request.source).isAbsolute()) {
    picture = readFile(request.source, pixels);
  } else if (!request.source.isEmpty()) {
    picture = fromTheme(request.source, pixels);
  }
  QImage image = picture.isNull() ? letterTile(request.name, pixels) : fitted(picture, pixels);
  if (request.saturation < 1) {
    desaturate(image, request.saturation);
  }
  return image;
}

}  // namespace plemora
