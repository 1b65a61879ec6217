#include <benchmark/benchmark.h>
#include <cairo.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "adapters/stage/virtual_clock.h"
#include "adapters/stage/virtual_main_queue.h"
#include "glass/gaussian_blur.h"
#include "glass/glass_view.h"
#include "glass/pixel_kernel.h"
#include "skin/look/glass_style.h"
#include "skin/look/rim_layer.h"
#include "striped_desktop.h"

// What the glass of a panel costs, in one run beside the same chain made with cairo: blur, colour
// matrix, a fill, rounded corners and a rim, 308 x 500 points at one and at two pixels a point.
// cairo has neither a blur nor a colour matrix: those are plain loops over its image surface, as
// its users write them.

namespace plemora {
namespace {

constexpr double width = 308;
constexpr double height = 500;
constexpr double cornerRadius = 15;
constexpr double sigma = 20;  // points
constexpr double fill = 0.25;
constexpr ColorMatrix matrix = {0.8265f,  -0.1885f, -0.0182f, 0,        0.1191f,  -0.0566f, 0.697f,
                                -0.0199f, 0,        0.1154f,  -0.0569f, -0.1861f, 0.8645f,  0,
                                0.1095f,  0,        0,        0,        1,        0};

/// With margin enough for the blur.
BackdropImage desktop(double scale) {
  return stripedDesktop({width + 200.0, height + 200.0}, scale);
}

/// The panel's glass, with margin enough for the blur.
class Panel {
 public:
  explicit Panel(double scale) : scale_(scale) {
    view_.setSize({width, height});
    view_.setScale(scale);
    view_.setBackdropKind(BackdropSource::Kind::pixels);
    tuned_ = std::make_unique<TunedBackdropView>(
        view_.showEffect(TunedBackdropView::effect(cornerRadius)), queue_);
    tuning_.saturation = 1.35;
    tuning_.fillOpacity = static_cast<float>(fill);
    tuning_.hideDesktopTint = true;
    tuning_.matrix = matrix;
    tuning_.margin = 0;
    setBlur(sigma);
    view_.setInWindow(true);
    rim_.update({width, height}, cornerRadius, true, scale);
    view_.setLayer(rim_.layer());
    view_.setBackdrop(desktop(scale), {-100, -100, width + 200, height + 200});
  }

  void setBlur(double radius) {
    tuning_.blurRadius = radius;
    tuned_->setTuning(tuning_);
    queue_.drain();
  }
  /// As a new backdrop would, but for the copy that a test has to make of it.
  void blurAgain() { setBlur(std::exchange(nextBlur_, sigma + sigma + 0.01 - nextBlur_)); }
  void newLayer() { view_.setLayer(rim_.layer()); }
  /// As a panel does that grows out of something, from a tenth of its height.
  void grow() {
    part_ = part_ >= 1 ? 0.1 : part_ + 0.01;
    view_.setContainer({0, 0, width, height * part_}, cornerRadius);
    rim_.update({width, height * part_}, cornerRadius, true, scale_);
    view_.setLayer(rim_.layer());
  }
  const Raster& render() { return view_.render(); }

 private:
  VirtualClock clock_;
  VirtualMainQueue queue_{clock_};
  GlassView view_{queue_};
  std::unique_ptr<TunedBackdropView> tuned_;
  RimLayer rim_{0.56, 0.18};
  TunedBackdropView::Tuning tuning_{};
  double nextBlur_ = sigma + 0.01;
  double part_ = 1;
  double scale_;
};

struct Destroy {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
template <typename T>
using Owned = std::unique_ptr<T, Destroy>;

Owned<cairo_surface_t> makeSurface(int pixelsWide, int pixelsHigh) {
  return Owned<cairo_surface_t>(
      cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixelsWide, pixelsHigh));
}

/// One running mean along a line of pixels that lie a stride apart.
void boxLine(const std::uint32_t* from, std::uint32_t* to, int count, int stride, int radius) {
  const auto at = [&](int i) { return from[std::clamp(i, 0, count - 1) * stride]; };
  std::uint32_t sums[4] = {};
  const auto size = static_cast<std::uint32_t>(2 * radius + 1);
  for (int i = -radius; i <= radius; ++i) {
    for (int channel = 0; channel < 4; ++channel) {
      sums[channel] += at(i) >> (8 * channel) & 0xff;
    }
  }
  for (int i = 0; i < count; ++i) {
    std::uint32_t pixel = 0;
    for (int channel = 0; channel < 4; ++channel) {
      pixel |= sums[channel] / size << (8 * channel);
      sums[channel] += (at(i + radius + 1) >> (8 * channel) & 0xff);
      sums[channel] -= (at(i - radius) >> (8 * channel) & 0xff);
    }
    to[i * stride] = pixel;
  }
}

void boxBlur(cairo_surface_t* surface, int radius) {
  cairo_surface_flush(surface);
  const int w = cairo_image_surface_get_width(surface);
  const int h = cairo_image_surface_get_height(surface);
  const int stride = cairo_image_surface_get_stride(surface) / 4;
  auto* pixels = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface));
  std::vector<std::uint32_t> scratch(static_cast<std::size_t>(stride) *
                                     static_cast<std::size_t>(h));
  auto* from = pixels;
  auto* to = scratch.data();
  for (int pass = 0; pass < 3; ++pass, std::swap(from, to)) {
    for (int y = 0; y < h; ++y) {
      boxLine(from + y * stride, to + y * stride, w, 1, radius);
    }
  }
  for (int pass = 0; pass < 3; ++pass, std::swap(from, to)) {
    for (int x = 0; x < w; ++x) {
      boxLine(from + x, to + x, h, stride, radius);
    }
  }
  cairo_surface_mark_dirty(surface);
}

void applyMatrix(cairo_surface_t* surface) {
  cairo_surface_flush(surface);
  const int w = cairo_image_surface_get_width(surface);
  const int h = cairo_image_surface_get_height(surface);
  const int stride = cairo_image_surface_get_stride(surface) / 4;
  auto* pixels = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface));
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      std::uint32_t& pixel = pixels[y * stride + x];
      const float red = static_cast<float>(pixel >> 16 & 0xff);
      const float green = static_cast<float>(pixel >> 8 & 0xff);
      const float blue = static_cast<float>(pixel & 0xff);
      std::uint32_t result = 0xff000000U;
      for (int row = 0; row < 3; ++row) {
        const float* m = matrix.data() + 5 * row;
        const float value = m[0] * red + m[1] * green + m[2] * blue + 255 * m[4];
        result |= static_cast<std::uint32_t>(std::clamp(value, 0.0f, 255.0f) + 0.5f)
                  << (16 - 8 * row);
      }
      pixel = result;
    }
  }
  cairo_surface_mark_dirty(surface);
}

void roundedPath(cairo_t* context, double inset) {
  constexpr double quarter = std::numbers::pi / 2;
  const double radius = cornerRadius - inset;
  const double left = inset + radius;
  const double top = inset + radius;
  const double right = width - inset - radius;
  const double bottom = height - inset - radius;
  cairo_new_path(context);
  cairo_arc(context, left, top, radius, 2 * quarter, 3 * quarter);
  cairo_arc(context, right, top, radius, 3 * quarter, 4 * quarter);
  cairo_arc(context, right, bottom, radius, 0, quarter);
  cairo_arc(context, left, bottom, radius, quarter, 2 * quarter);
  cairo_close_path(context);
}

void renderWithCairo(cairo_surface_t* background, cairo_surface_t* panel, cairo_surface_t* target,
                     double scale) {
  const Owned<cairo_t> cut(cairo_create(panel));
  cairo_set_source_surface(cut.get(), background, -100 * scale, -100 * scale);
  cairo_set_operator(cut.get(), CAIRO_OPERATOR_SOURCE);
  cairo_paint(cut.get());
  boxBlur(panel, static_cast<int>(sigma * scale));
  applyMatrix(panel);
  cairo_set_operator(cut.get(), CAIRO_OPERATOR_OVER);
  cairo_set_source_rgba(cut.get(), 0.1, 0.1, 0.11, fill);
  cairo_paint(cut.get());

  const Owned<cairo_t> context(cairo_create(target));
  cairo_set_operator(context.get(), CAIRO_OPERATOR_CLEAR);
  cairo_paint(context.get());
  cairo_set_operator(context.get(), CAIRO_OPERATOR_OVER);
  cairo_set_source_surface(context.get(), panel, 0, 0);
  cairo_scale(context.get(), scale, scale);
  roundedPath(context.get(), 0);
  cairo_fill(context.get());
  const Owned<cairo_pattern_t> rim(cairo_pattern_create_linear(0, 0, 0, height));
  cairo_pattern_add_color_stop_rgba(rim.get(), 0, 1, 1, 1, 0.56);
  cairo_pattern_add_color_stop_rgba(rim.get(), 0.12, 1, 1, 1, 0.18);
  cairo_pattern_add_color_stop_rgba(rim.get(), 1, 1, 1, 1, 0.18);
  cairo_set_source(context.get(), rim.get());
  cairo_set_line_width(context.get(), 1);
  roundedPath(context.get(), 0.5);
  cairo_stroke(context.get());
  cairo_surface_flush(target);
}

void registerAll() {
  for (const double scale : {1.0, 2.0}) {
    const std::string size = std::to_string(static_cast<int>(width * scale)) + "x" +
                             std::to_string(static_cast<int>(height * scale));
    const auto add = [](const std::string& name, auto work) {
      benchmark::RegisterBenchmark(name.c_str(), work)->Unit(benchmark::kMillisecond);
    };
    add("glass/blurred anew/" + size, [scale](benchmark::State& state) {
      Panel panel(scale);
      for (auto _ : state) {
        panel.blurAgain();
        benchmark::DoNotOptimize(panel.render().row(0));
      }
    });
    add("glass/new layer only/" + size, [scale](benchmark::State& state) {
      Panel panel(scale);
      panel.render();
      for (auto _ : state) {
        panel.newLayer();
        benchmark::DoNotOptimize(panel.render().row(0));
      }
    });
    add("glass/container grows/" + size, [scale](benchmark::State& state) {
      Panel panel(scale);
      panel.render();
      for (auto _ : state) {
        panel.grow();
        benchmark::DoNotOptimize(panel.render().row(0));
      }
    });
    for (const PixelKernel* kernel : availablePixelKernels()) {
      add(std::string("blur alone, ") + kernel->name + "/" + size,
          [scale, kernel](benchmark::State& state) {
            Raster raster(static_cast<int>(width * scale), static_cast<int>(height * scale));
            for (auto _ : state) {
              GaussianBlur(sigma * scale).apply(raster, *kernel);
              benchmark::DoNotOptimize(raster.row(0));
            }
          });
    }
    add("cairo/blurred anew/" + size, [scale](benchmark::State& state) {
      BackdropImage image = desktop(scale);
      const Owned<cairo_surface_t> background(cairo_image_surface_create_for_data(
          reinterpret_cast<unsigned char*>(image.pixels.data()), CAIRO_FORMAT_ARGB32, image.width,
          image.height, image.width * 4));
      const auto panel =
          makeSurface(static_cast<int>(width * scale), static_cast<int>(height * scale));
      const auto target =
          makeSurface(static_cast<int>(width * scale), static_cast<int>(height * scale));
      for (auto _ : state) {
        renderWithCairo(background.get(), panel.get(), target.get(), scale);
      }
    });
  }
}

}  // namespace
}  // namespace plemora

int main(int argc, char** argv) {
  plemora::registerAll();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
}
