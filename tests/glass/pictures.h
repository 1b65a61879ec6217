#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

#include "glass/raster.h"

namespace plemora {

inline int component(Pixel pixel, int shift) {
  return static_cast<int>(pixel >> shift & 0xff);
}

/// The largest difference of a component.
inline int difference(Pixel a, Pixel b) {
  int most = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    most = std::max(most, std::abs(component(a, shift) - component(b, shift)));
  }
  return most;
}

/// Premultiplied pixels of all kinds, the same ones for the same seed.
inline std::vector<Pixel> randomPixels(std::size_t count, unsigned seed, bool isOpaque = false) {
  std::mt19937 random(seed);
  std::vector<Pixel> pixels(count);
  for (Pixel& pixel : pixels) {
    const auto kind = random() % 8;
    const Pixel alpha = isOpaque || kind == 0 ? 255
                        : kind == 1           ? 0
                                              : static_cast<Pixel>(random() % 256);
    pixel = alpha << 24;
    for (int shift = 0; shift < 24; shift += 8) {
      pixel |= static_cast<Pixel>(random() % (alpha + 1)) << shift;
    }
  }
  return pixels;
}

inline Raster rasterOf(int width, int height, const std::vector<Pixel>& pixels) {
  Raster raster(width, height);
  std::copy(pixels.begin(), pixels.end(), raster.pixels().begin());
  return raster;
}

struct Errors {
  double mean = 0;
  double worst = 0;
};

/// How far the picture is from a Gaussian by its definition, but for a border of that many pixels.
inline Errors errorsAgainstGaussian(const Raster& source, const Raster& blurred, double sigma,
                                    int border) {
  const int reach = static_cast<int>(std::ceil(4 * sigma));
  std::vector<double> weights;
  double total = 0;
  for (int i = -reach; i <= reach; ++i) {
    weights.push_back(std::exp(-i * i / (2 * sigma * sigma)));
    total += weights.back();
  }
  const int width = source.width();
  const int height = source.height();
  const auto index = [&](int x, int y) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
  };
  Errors errors;
  for (int shift = 0; shift < 32; shift += 8) {
    std::vector<double> across(source.pixels().size());
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        for (int i = -reach; i <= reach; ++i) {
          across[index(x, y)] += weights[static_cast<std::size_t>(i + reach)] / total *
                                 component(source.at(std::clamp(x + i, 0, width - 1), y), shift);
        }
      }
    }
    for (int y = border; y < height - border; ++y) {
      for (int x = border; x < width - border; ++x) {
        double value = 0;
        for (int i = -reach; i <= reach; ++i) {
          value += weights[static_cast<std::size_t>(i + reach)] / total *
                   across[index(x, std::clamp(y + i, 0, height - 1))];
        }
        const double error = std::abs(value - component(blurred.at(x, y), shift));
        errors.mean += error / (4.0 * (width - 2 * border) * (height - 2 * border));
        errors.worst = std::max(errors.worst, error);
      }
    }
  }
  return errors;
}

}  // namespace plemora
