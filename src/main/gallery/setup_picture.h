#pragma once

#include <QImage>
#include <QString>
#include <functional>

namespace plemora {

/// Takes a picture under that name. False: it could not, and no more are wanted.
using KeepPicture = std::function<bool(const QString& name, const QImage& picture)>;

/// Draws the windows of setup in all their states: the setup window on its own ground, light and
/// dark; helper, callout and rings on a painted desktop. scale: pixels to the point.
bool drawSetup(double scale, const KeepPicture& keep);

}  // namespace plemora
