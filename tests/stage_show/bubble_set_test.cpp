#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include "adapters/stage/memory_defaults.h"
#include "adapters/stage/memory_files.h"
#include "main/stage/picture_resources.h"
#include "skin/bubble_cancel.h"

namespace plemora {
namespace {

void write(const QString& path, const std::string& bytes) {
  QFile file(path);
  file.open(QIODevice::WriteOnly);
  file.write(QByteArray::fromStdString(bytes));
}

/// The light that a bubble has along its edge, on nothing.
QImage edgeLight() {
  QImage image(158, 32, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(255, 0, 0, 128), 4));
  painter.drawRoundedRect(QRectF(2, 2, 154, 28), 12, 12);
  return image;
}

// From files on a disk, drawn as a person would, to the masks that the overlay stacks.
TEST(BubbleSetTest, LoadsPicturesAsTheyWereDrawn) {
  const QTemporaryDir folder;
  edgeLight().save(folder.filePath("edge.png"));
  write(folder.filePath("broken.png"), "no picture");
  const std::string matrix = R"("matrix":[0.9,0,0,0,0,0,0.9,0,0,0,0,0,0.9,0,0,0,0,0,1,0])";
  write(folder.filePath("26.4.json"),
        R"([{"mask":"edge",)" + matrix + R"(},{"mask":"broken",)" + matrix + "}]");
  MemoryDefaults defaults({"-debugBubbleDir", folder.path().toStdString()});
  MemoryFiles files;
  PictureResources resources;
  PictureResources::copyFolder(folder.path().toStdString(), files);
  const auto layers = BubbleCancel(defaults, files, resources).layers("26.4", 0.5F);
  ASSERT_EQ(layers.size(), 1U);
  EXPECT_FLOAT_EQ(layers[0].matrix[0], 0.95F);
  const ImageContent& mask = layers[0].mask;
  ASSERT_EQ(mask.width, 158);
  ASSERT_EQ(mask.height, 32);
  const unsigned char* pixel = mask.pixels->data() + (1 * 158 + 79) * 4;
  EXPECT_EQ((std::vector<int>{pixel[0], pixel[1], pixel[2], pixel[3]}),
            (std::vector<int>{255, 0, 0, 128}));
}

}  // namespace
}  // namespace plemora
