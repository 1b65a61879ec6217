#include "glass/backdrop_filter.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "glass/gaussian_blur.h"
#include "glass/look_transform.h"
#include "glass/outline.h"
#include "glass/pixel_kernel.h"

namespace plemora {

namespace {

constexpr Pixel opaqueBits = 0xff000000;
constexpr int largestMargin = 3 * (static_cast<int>(GaussianBlur::largestSigma) + 1);

int marginInPixels(const GlassLook& look, double scale) {
  const double margin = std::clamp(finiteOr0(look.margin) * scale, 0.0, 1.0 * largestMargin);
  return std::min(static_cast<int>(std::ceil(margin)),
                  GaussianBlur(look.blurRadius * scale).reach());
}

Color desktopTint(const Color& mean, const GlassLook& look) {
  constexpr double shade = 0.2;
  const double brightness = 0.2126 * mean.red + 0.7152 * mean.green + 0.0722 * mean.blue;
  const auto shaded = [&](double part) {
    return look.isDark ? part * shade : 1 - (1 - part) * shade;
  };
  return {shaded(mean.red), shaded(mean.green), shaded(mean.blue),
          look.desktopTint * (look.isDark ? brightness : 1 - brightness)};
}

/// Which pixel of the image is shown at each pixel of a row or a column.
std::vector<int> sources(int from, int count, double perPixel, double first, int available) {
  std::vector<int> result(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const double at = (from + i + 0.5) * perPixel - first;
    result[static_cast<std::size_t>(i)] =
        static_cast<int>(std::clamp(std::floor(at), 0.0, available - 1.0));
  }
  return result;
}

}  // namespace

void BackdropFilter::setBackdrop(BackdropImage image, const Rect& covers) {
  const bool isWhole = image.width > 0 && image.height > 0 &&
                       image.pixels.size() / static_cast<std::size_t>(image.width) >=
                           static_cast<std::size_t>(image.height);
  image_ = isWhole ? std::move(image) : BackdropImage{};
  covers_ = finiteOr0(covers);
  if (covers_.isEmpty()) {
    const double scale = image_.scale > 0 && std::isfinite(image_.scale) ? image_.scale : 1;
    covers_.width = image_.width / scale;
    covers_.height = image_.height / scale;
  }
  mean_ = mean();
  key_ = {};
}

void BackdropFilter::forgetPixels() {
  image_ = {};
  blurred_ = {};
  key_ = {};
}

double BackdropFilter::reach(const GlassLook& look, double scale) {
  return marginInPixels(look, scale) / scale;
}

Color BackdropFilter::mean() const {
  double sums[3] = {};
  std::size_t count = 0;
  // Some hundred pixels tell as much as all.
  const std::size_t step = std::max<std::size_t>(image_.pixels.size() / 997, 1);
  for (std::size_t i = 0; i < image_.pixels.size(); i += step, ++count) {
    for (std::size_t channel = 0; channel < 3; ++channel) {
      sums[channel] += image_.pixels[i] >> (16 - 8 * channel) & 0xff;
    }
  }
  const double scale = count > 0 ? 1 / (255.0 * static_cast<double>(count)) : 0;
  return {sums[0] * scale, sums[1] * scale, sums[2] * scale, 1};
}

void BackdropFilter::cut(Raster& raster, int left, int top, double scale) const {
  const double perX = image_.width / (covers_.width * scale);
  const double perY = image_.height / (covers_.height * scale);
  const auto columns = sources(left, raster.width(), perX, covers_.x * scale * perX, image_.width);
  const auto rows = sources(top, raster.height(), perY, covers_.y * scale * perY, image_.height);
  for (int y = 0; y < raster.height(); ++y) {
    const auto* from =
        image_.pixels.data() +
        static_cast<std::ptrdiff_t>(rows[static_cast<std::size_t>(y)]) * image_.width;
    Pixel* to = raster.row(y);
    for (std::size_t x = 0; x < columns.size(); ++x) {
      to[x] = from[columns[x]] | opaqueBits;
    }
  }
}

void BackdropFilter::blur(const Key& key) {
  if (key == key_) {
    return;
  }
  const int width = key.width + 2 * key.margin;
  const int height = key.height + 2 * key.margin;
  if (blurred_.width() != width || blurred_.height() != height) {
    blurred_.reset(width, height);
  }
  cut(blurred_, -key.margin, -key.margin, key.scale);
  GaussianBlur(key.sigma).apply(blurred_);
  key_ = key;
  ++blurCount_;
}

void BackdropFilter::render(const GlassLook& look, double scale, const PixelRect& wanted,
                            Raster& target) {
  if (!hasBackdrop() || target.isEmpty()) {
    return;
  }
  const double sigma =
      std::clamp(finiteOr0(look.blurRadius) * scale, 0.0, GaussianBlur::largestSigma);
  const int margin = marginInPixels(look, scale);
  blur({target.width(), target.height(), margin, scale, sigma});
  auto washes = look.washes;
  if (look.desktopTint > 0) {
    washes.push_back(desktopTint(mean_, look));
  }
  const PixelTransform transform = lookTransform(look.matrix, washes);
  const PixelRect part = wanted.intersection(target.bounds());
  for (int y = part.y; y < part.maxY(); ++y) {
    pixelKernel().transform(target.row(y) + part.x, blurred_.row(y + margin) + margin + part.x,
                            static_cast<std::size_t>(part.width), transform);
  }
}

}  // namespace plemora
