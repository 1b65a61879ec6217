#include "main/stage/stage_icons.h"

#include <QFile>
#include <QImage>

#include "main/stage/drawing_painter.h"
#include "main/stage/drawing_parts.h"

namespace plemora {

namespace {

constexpr int side = 128;

}  // namespace

void StageIcons::update() {
  for (const RunningApplication& application : workspace_.runningApplications()) {
    if (!done_.insert(application.pid).second) {
      continue;
    }
    const QString file = fileFor(application.localizedName.value_or("?"));
    workspace_.update(application.pid,
                      [&](RunningApplication& kept) { kept.icon = Image{file.toStdString()}; });
  }
}

QString StageIcons::fileFor(const std::string& name) {
  // Hexadecimal: any name makes a file's.
  const QString file =
      folder_.filePath(QString::fromLatin1(QByteArray::fromStdString(name).toHex()) + ".png");
  if (!QFile::exists(file)) {
    QImage icon(side, side, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    DrawingPainter({}, {}, icon, {}, 1)
        .paint({AppIconMark{{0, 0, side, side}, name, symbolOfApp(name)}});
    icon.save(file, "PNG");
  }
  return file;
}

}  // namespace plemora
