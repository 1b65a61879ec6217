#include "main/gallery/gallery.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <iostream>
#include <set>

#include "base/log.h"

namespace plemora {
namespace {

/// How many different colours a picture has, up to a limit.
std::size_t colors(const QImage& image, std::size_t limit) {
  std::set<QRgb> seen;
  for (int y = 0; y < image.height() && seen.size() < limit; y += 3) {
    for (int x = 0; x < image.width(); x += 3) {
      seen.insert(image.pixel(x, y));
    }
  }
  return seen.size();
}

TEST(Gallery, DrawsEveryStateOnBothWallpapersAndScales) {
  setLogHandler([](const LogRecord& record) {
    if (record.level >= LogLevel::warning) {
      std::cerr << record.message << '\n';
    }
  });
  const QTemporaryDir temporary;
  const QString chosen = qEnvironmentVariable("PLEMORA_TEST_GALLERY");
  const QDir folder(chosen.isEmpty() ? temporary.filePath("new/folder") : chosen);
  ASSERT_EQ(renderScreenshots(folder.path().toStdString()), 0);
  const QStringList names = folder.entryList({"*.png"}, QDir::Files);
  EXPECT_EQ(names.filter("@2x").size() * 2, names.size());
  for (const QString& name : names) {
    const QImage picture(folder.filePath(name));
    EXPECT_GT(colors(picture, 200), 100u) << name.toStdString();
    if (name.contains("@2x")) {
      const QImage half(folder.filePath(QString(name).remove("@2x")));
      EXPECT_EQ(picture.size(), half.size() * 2) << name.toStdString();
    }
  }
  for (const char* state :
       {"panel", "no-apps", "many-apps", "open-outputs", "permission", "muted", "long-names",
        "no-volume", "lines", "setup-first", "setup-complete", "callout", "ripple"}) {
    EXPECT_EQ(names.filter(QString("%1-").arg(state)).size(), 4) << state;
  }
}

}  // namespace
}  // namespace plemora
