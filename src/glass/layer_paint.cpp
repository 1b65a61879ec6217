#include "glass/layer_paint.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "glass/blend.h"
#include "glass/pixel_kernel.h"

namespace plemora {

namespace {

class Solid : public Paint {
 public:
  explicit Solid(Pixel pixel) : pixel_(pixel) {}

  void fill(Pixel* pixels, int count, int, int) const override {
    std::fill_n(pixels, count, pixel_);
  }

 private:
  Pixel pixel_;
};

/// Colours are mixed premultiplied, so that white does not darken on its way to nothing.
Pixel mixed(Pixel a, Pixel b, double share) {
  Pixel result = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const double from = a >> shift & 0xff;
    const double to = b >> shift & 0xff;
    result |= static_cast<Pixel>(std::lround(from + (to - from) * share)) << shift;
  }
  return result;
}

class Gradient : public Paint {
 public:
  Gradient(const GradientContent& content, const Rect& bounds) {
    const std::size_t stops = content.colors.size();
    std::vector<double> locations(stops);
    for (std::size_t i = 0; i < stops; ++i) {
      const bool isEven = content.locations.size() != stops;
      const double location =
          isEven ? (stops > 1 ? static_cast<double>(i) / static_cast<double>(stops - 1) : 0)
                 : finiteOr0(content.locations[i]);
      locations[i] = i > 0 ? std::max(location, locations[i - 1]) : location;
    }
    std::size_t next = 0;
    for (std::size_t i = 0; i < table_.size(); ++i) {
      const double at = static_cast<double>(i) / static_cast<double>(table_.size() - 1);
      while (next < stops && locations[next] <= at) {
        ++next;
      }
      if (next == 0 || next == stops) {
        table_[i] = pixelFor(content.colors[next == 0 ? 0 : stops - 1]);
        continue;
      }
      const double from = locations[next - 1];
      table_[i] = mixed(pixelFor(content.colors[next - 1]), pixelFor(content.colors[next]),
                        (at - from) / (locations[next] - from));
    }
    const Point start{bounds.x + finiteOr0(content.start.x) * bounds.width,
                      bounds.y + finiteOr0(content.start.y) * bounds.height};
    const double dx = (finiteOr0(content.end.x) - finiteOr0(content.start.x)) * bounds.width;
    const double dy = (finiteOr0(content.end.y) - finiteOr0(content.start.y)) * bounds.height;
    const double length = dx * dx + dy * dy;
    const double last = static_cast<double>(table_.size() - 1);
    if (length > 0) {
      stepX_ = last * dx / length;
      stepY_ = last * dy / length;
    }
    offset_ = -start.x * stepX_ - start.y * stepY_;
  }

  void fill(Pixel* pixels, int count, int x, int y) const override {
    double at = offset_ + (x + 0.5) * stepX_ + (y + 0.5) * stepY_;
    if (stepX_ == 0) {
      std::fill_n(pixels, count, pixelAt(at));
      return;
    }
    for (int i = 0; i < count; ++i, at += stepX_) {
      pixels[i] = pixelAt(at);
    }
  }

 private:
  Pixel pixelAt(double at) const {
    const double last = static_cast<double>(table_.size() - 1);
    return table_[static_cast<std::size_t>(std::clamp(at, 0.0, last) + 0.5)];
  }

  std::array<Pixel, 1024> table_;
  double stepX_ = 0;
  double stepY_ = 0;
  double offset_ = 0;
};

class Picture : public Paint {
 public:
  Picture(const ImageContent& content, const Rect& bounds)
      : content_(content),
        bounds_(bounds),
        perX_(content.width / bounds.width),
        perY_(content.height / bounds.height),
        samplesX_(samplesFor(perX_)),
        samplesY_(samplesFor(perY_)) {}

  void fill(Pixel* pixels, int count, int x, int y) const override {
    for (int i = 0; i < count; ++i) {
      std::array<double, 4> sum{};
      for (int row = 0; row < samplesY_; ++row) {
        for (int column = 0; column < samplesX_; ++column) {
          const double at = (x + i + (column + 0.5) / samplesX_ - bounds_.x) * perX_ - 0.5;
          const double down = (y + (row + 0.5) / samplesY_ - bounds_.y) * perY_ - 0.5;
          addSample(sum, at, down);
        }
      }
      Pixel pixel = 0;
      for (std::size_t c = 0; c < sum.size(); ++c) {
        const double mean = sum[c] / (samplesX_ * samplesY_);
        pixel |= static_cast<Pixel>(std::lround(std::min(mean, 255.0)))
                 << std::array{16, 8, 0, 24}[c];
      }
      pixels[i] = pixel;
    }
  }

 private:
  /// An image shown smaller is read at several places a pixel, else its details would flicker.
  static int samplesFor(double imagePixelsPerPixel) {
    return static_cast<int>(std::ceil(std::clamp(imagePixelsPerPixel, 1.0, 8.0)));
  }

  void addSample(std::array<double, 4>& sum, double x, double y) const {
    const double left = std::clamp(std::floor(x), -1.0, static_cast<double>(content_.width));
    const double top = std::clamp(std::floor(y), -1.0, static_cast<double>(content_.height));
    const double shareX = std::clamp(x - left, 0.0, 1.0);
    const double shareY = std::clamp(y - top, 0.0, 1.0);
    for (int dy = 0; dy < 2; ++dy) {
      for (int dx = 0; dx < 2; ++dx) {
        const double weight = (dx ? shareX : 1 - shareX) * (dy ? shareY : 1 - shareY);
        addPixel(sum, static_cast<int>(left) + dx, static_cast<int>(top) + dy, weight);
      }
    }
  }

  void addPixel(std::array<double, 4>& sum, int x, int y, double weight) const {
    const int column = std::clamp(x, 0, content_.width - 1);
    const int row = std::clamp(y, 0, content_.height - 1);
    const unsigned char* pixel =
        content_.pixels->data() +
        (static_cast<std::size_t>(row) * static_cast<std::size_t>(content_.width) +
         static_cast<std::size_t>(column)) *
            4;
    const double alpha = pixel[3] * weight;
    for (std::size_t c = 0; c < 3; ++c) {
      sum[c] += pixel[c] * alpha / 255;
    }
    sum[3] += alpha;
  }

  ImageContent content_;
  Rect bounds_;
  double perX_;
  double perY_;
  int samplesX_;
  int samplesY_;
};

}  // namespace

std::unique_ptr<Paint> makeSolid(const Color& color) {
  return std::make_unique<Solid>(pixelFor(color));
}

std::unique_ptr<Paint> makeGradient(const GradientContent& content, const Rect& bounds) {
  if (content.colors.empty() || bounds.isEmpty()) {
    return nullptr;
  }
  return std::make_unique<Gradient>(content, bounds);
}

std::unique_ptr<Paint> makeImage(const ImageContent& content, const Rect& bounds) {
  if (content.width <= 0 || content.height <= 0 || !content.pixels || bounds.isEmpty() ||
      content.pixels->size() / 4 / static_cast<std::size_t>(content.width) <
          static_cast<std::size_t>(content.height)) {
    return nullptr;
  }
  return std::make_unique<Picture>(content, bounds);
}

void paint(Raster& target, const std::vector<CoverageSpan>& spans, const Paint& source,
           std::uint8_t opacity) {
  std::vector<Pixel> colors(static_cast<std::size_t>(target.width()));
  for (const CoverageSpan& span : spans) {
    const auto count = static_cast<std::size_t>(span.width);
    source.fill(colors.data(), span.width, span.x, span.y);
    const std::uint32_t share = multiply255(span.coverage, opacity);
    if (share < 255) {
      pixelKernel().scale(colors.data(), static_cast<std::uint8_t>(share), count);
    }
    pixelKernel().over(target.row(span.y) + span.x, colors.data(), count);
  }
}

}  // namespace plemora
