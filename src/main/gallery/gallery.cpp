#include "main/gallery/gallery.h"

#include <QDir>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <cstdio>
#include <utility>
#include <vector>

#include "main/gallery/gallery_states.h"
#include "main/gallery/panel_picture.h"
#include "main/gallery/setup_picture.h"

namespace plemora {

namespace {

struct Shot {
  Wallpaper wallpaper;
  double scale;
  const char* suffix;
};

constexpr Shot shots[] = {
    {Wallpaper::colorful, 1, "colorful"},
    {Wallpaper::colorful, 2, "colorful@2x"},
    {Wallpaper::light, 1, "light"},
    {Wallpaper::light, 2, "light@2x"},
};

bool fail(const QString& message) {
  std::fprintf(stderr, "plemora: %s\n", qPrintable(message));
  return false;
}

bool keep(const QDir& folder, const QString& name, const QImage& picture) {
  if (picture.isNull()) {
    return fail(name + " could not be drawn; the log says why");
  }
  const QString path = folder.filePath(name + ".png");
  return picture.save(path, "PNG") ||
         fail("cannot write " + path + "; choose a folder that can be written to");
}

bool draw(const GalleryState& state, const QDir& folder) {
  for (const Shot& shot : shots) {
    GalleryWorld world(state);
    if (!keep(folder,
              QString("%1-%2").arg(QString::fromStdString(state.name), QString(shot.suffix)),
              panelPicture(world, shot.wallpaper, shot.scale, state.room))) {
      return false;
    }
  }
  return true;
}

}  // namespace

int renderScreenshots(const std::string& folder) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  char name[] = "plemora";
  char* arguments[] = {name, nullptr};
  int count = 1;
  QGuiApplication application(count, arguments);

  const QDir target(QString::fromStdString(folder));
  if (!target.mkpath(".")) {
    fail("cannot make the folder " + target.path() + "; choose another one");
    return 1;
  }
  const QTemporaryDir icons;
  if (!icons.isValid()) {
    fail("cannot make a temporary folder: " + icons.errorString());
    return 1;
  }
  for (const GalleryState& state : galleryStates(icons.path().toStdString())) {
    if (!draw(state, target)) {
      return 1;
    }
  }
  for (const double scale : {1.0, 2.0}) {
    if (!drawSetup(scale, [&target](const QString& picture, const QImage& image) {
          return keep(target, picture, image);
        })) {
      return 1;
    }
  }
  return 0;
}

}  // namespace plemora
