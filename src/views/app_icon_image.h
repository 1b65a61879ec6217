#pragma once

#include <QImage>
#include <QSize>
#include <QString>

namespace plemora {

/// A picture of an app's icon.
struct AppIconRequest {
  QString source;         ///< an absolute path of an image file, or a name in the icon theme
  QString name;           ///< of the app; its first letter stands in where there is no picture
  QSize pixels;           ///< the icon is fitted into it, centred
  double saturation = 1;  ///< 0: grey
};

/// Never empty for a size above 0: whatever cannot be read as a picture (missing, no image, above
/// 64 MB or 24 million pixels) is drawn as the app's first letter. GUI thread.
QImage appIconImage(const AppIconRequest& request);

}  // namespace plemora
