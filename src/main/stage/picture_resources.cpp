#include "main/stage/picture_resources.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QImage>
#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/files.h"

namespace plemora {

std::optional<ImageContent> PictureResources::decodeImage(const std::string& bytes) {
  const QImage image =
      QImage::fromData(QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size())))
          .convertToFormat(QImage::Format_RGBA8888);
  if (image.isNull()) {
    return std::nullopt;
  }
  const auto rowSize = static_cast<std::size_t>(image.width()) * 4;
  std::vector<unsigned char> pixels(rowSize * static_cast<std::size_t>(image.height()));
  for (int y = 0; y < image.height(); ++y) {
    std::copy_n(image.constScanLine(y), rowSize,
                pixels.begin() + static_cast<std::ptrdiff_t>(rowSize) * y);
  }
  return ImageContent{image.width(), image.height(),
                      std::make_shared<const std::vector<unsigned char>>(std::move(pixels))};
}

void PictureResources::copyFolder(const std::string& folder, Files& files) {
  files.makeFolder(folder);
  const QDir dir(QString::fromStdString(folder));
  for (const QString& name : dir.entryList(QDir::Files)) {
    QFile file(dir.filePath(name));
    if (file.open(QIODevice::ReadOnly)) {
      files.writeAtomically(folder + "/" + name.toStdString(), file.readAll().toStdString());
    }
  }
}

}  // namespace plemora
