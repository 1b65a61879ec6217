#include "glass/layer_renderer.h"

#include <gmock/gmock.h>

#include <functional>
#include <limits>

#include "pictures.h"

namespace plemora {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

const Color red{1, 0, 0, 1};
const Color green{0, 1, 0, 1};
const Color blue{0, 0, 1, 1};

std::shared_ptr<Layer> filled(const Rect& frame, LayerContent content) {
  auto layer = std::make_shared<Layer>();
  layer->frame = frame;
  layer->content = std::move(content);
  return layer;
}

std::shared_ptr<Layer> plain(const Rect& frame, const Color& color) {
  auto layer = filled(frame, {});
  layer->backgroundColor = color;
  return layer;
}

std::shared_ptr<Layer> shape(const Rect& frame, ShapeContent content) {
  return filled(frame, std::move(content));
}

std::shared_ptr<Layer> group(const Rect& frame, std::vector<std::shared_ptr<Layer>> sublayers) {
  auto layer = filled(frame, {});
  layer->sublayers = std::move(sublayers);
  return layer;
}

ImageContent image(int width, int height, std::vector<unsigned char> bytes) {
  return {width, height, std::make_shared<const std::vector<unsigned char>>(std::move(bytes))};
}

template <typename Change>
std::shared_ptr<Layer> with(std::shared_ptr<Layer> layer, Change change) {
  change(*layer);
  return layer;
}

std::shared_ptr<Layer> masked(std::shared_ptr<Layer> layer, std::shared_ptr<Layer> mask) {
  layer->mask = std::move(mask);
  return layer;
}

struct Probe {
  Point at;  ///< points, the middle of what is looked at
  Pixel expected;
  int tolerance = 1;
};

struct LayerCase {
  const char* name;
  std::shared_ptr<Layer> layer;
  std::vector<Probe> probes;
};

const Rect all{0, 0, 20, 20};

std::vector<LayerCase> layerCases() {
  const auto half = [](Layer& layer) { layer.opacity = 0.5; };
  const auto blend = [](BlendMode mode) {
    return [mode](Layer& layer) { layer.blendMode = mode; };
  };
  // Over grey 0x404040.
  return {
      {"background colour",
       plain({5, 5, 4, 4}, red),
       {{{5.5, 5.5}, 0xffff0000}, {{8.5, 8.5}, 0xffff0000}, {{9.5, 5.5}, 0xff404040}}},
      {"hidden",
       with(plain(all, red), [](Layer& l) { l.isHidden = true; }),
       {{{5.5, 5.5}, 0xff404040}}},
      {"opacity of one piece", with(plain(all, red), half), {{{5.5, 5.5}, 0xff9f2020}}},
      {"opacity of a group: what is covered does not show through",
       with(group(all, {plain(all, red), plain(all, blue)}), half),
       {{{5.5, 5.5}, 0xff20209f}}},
      {"opacity of fill and stroke as one",
       with(shape(all, {{{{4, 4, 12, 12}}}, false, red, blue, 8}), half),
       {{{6.5, 10.5}, 0xff20209f}, {{10.5, 10.5}, 0xff9f2020}}},
      {"a group of groups",
       with(group(all, {with(plain(all, red), half)}), half),
       {{{5.5, 5.5}, 0xff6f3030, 2}}},
      {"order of siblings",
       group(all, {plain(all, red), plain(all, blue)}),
       {{{5.5, 5.5}, 0xff0000ff}}},
      {"zPosition beats the order",
       group(all, {with(plain(all, red), [](Layer& l) { l.zPosition = 10; }), plain(all, blue)}),
       {{{5.5, 5.5}, 0xffff0000}}},
      {"background, content, sublayers",
       with(group(all, {plain({10, 0, 10, 20}, green)}),
            [](Layer& l) {
              l.backgroundColor = red;
              l.content = ShapeContent{{{{0, 0, 20, 10}}}, false, blue};
            }),
       {{{5.5, 15.5}, 0xffff0000}, {{5.5, 5.5}, 0xff0000ff}, {{15.5, 5.5}, 0xff00ff00}}},
      {"frames are the parent's",
       group({4, 4, 8, 8}, {group({2, 2, 2, 2}, {plain({1, 1, 2, 2}, red)})}),
       {{{7.5, 7.5}, 0xffff0000}, {{6.5, 6.5}, 0xff404040}, {{8.5, 8.5}, 0xffff0000}}},
      {"corner radius rounds the background",
       with(plain(all, red), [](Layer& l) { l.cornerRadius = 10; }),
       {{{0.5, 0.5}, 0xff404040}, {{10.5, 0.5}, 0xffff0000, 8}, {{10.5, 10.5}, 0xffff0000}}},
      {"corners without masksToBounds leave sublayers whole",
       with(group(all, {plain(all, red)}), [](Layer& l) { l.cornerRadius = 10; }),
       {{{0.5, 0.5}, 0xffff0000}}},
      {"masksToBounds clips sublayers to the corners",
       with(group({2, 2, 16, 16}, {plain({-5, -5, 40, 40}, red)}),
            [](Layer& l) {
              l.cornerRadius = 8;
              l.masksToBounds = true;
            }),
       {{{0.5, 10.5}, 0xff404040},
        {{2.5, 2.5}, 0xff404040},
        {{10.5, 10.5}, 0xffff0000},
        {{10.5, 2.5}, 0xffff0000, 8}}},
      {"even-odd",
       shape(all, {{{{2, 2, 16, 16}}, {{6, 6, 8, 8}}}, true, red}),
       {{{4.5, 4.5}, 0xffff0000}, {{10.5, 10.5}, 0xff404040}, {{14.5, 10.5}, 0xffff0000}}},
      {"non-zero",
       shape(all, {{{{2, 2, 16, 16}}, {{6, 6, 8, 8}}}, false, red}),
       {{{10.5, 10.5}, 0xffff0000}}},
      {"stroke centred on the outline",
       shape(all, {{{{4, 4, 12, 12}}}, false, {}, red, 2}),
       {{{2.5, 10.5}, 0xff404040},
        {{3.5, 10.5}, 0xffff0000},
        {{4.5, 10.5}, 0xffff0000},
        {{5.5, 10.5}, 0xff404040}}},
      {"a shape may leave its layer",
       shape({5, 5, 1, 1}, {{{{-5, -5, 20, 20}}}, false, red}),
       {{{1.5, 1.5}, 0xffff0000}, {{18.5, 18.5}, 0xffff0000}}},
      {"mask by its alpha",
       masked(plain(all, red), plain({4, 4, 8, 8}, Color::black(0.5))),
       {{{3.5, 5.5}, 0xff404040}, {{5.5, 5.5}, 0xff9f2020}, {{12.5, 5.5}, 0xff404040}}},
      {"mask in the layer's space",
       masked(plain({10, 10, 10, 10}, red), plain({5, 5, 2, 2}, green)),
       {{{14.5, 14.5}, 0xff404040}, {{15.5, 15.5}, 0xffff0000}, {{17.5, 17.5}, 0xff404040}}},
      {"mask of a mask",
       masked(plain(all, red), masked(plain({0, 0, 10, 20}, green), plain({5, 0, 15, 20}, green))),
       {{{4.5, 5.5}, 0xff404040}, {{7.5, 5.5}, 0xffff0000}, {{12.5, 5.5}, 0xff404040}}},
      {"screen",
       with(plain(all, {0.5, 1, 0, 1}), blend(BlendMode::screen)),
       {{{5.5, 5.5}, 0xffa0ff40}}},
      {"screen at half opacity",
       with(with(plain(all, Color::white()), blend(BlendMode::screen)), half),
       {{{5.5, 5.5}, 0xffa0a0a0}}},
      {"plusLighter",
       with(plain(all, {0.5, 1, 0, 1}), blend(BlendMode::plusLighter)),
       {{{5.5, 5.5}, 0xffc0ff40}}},
      {"saturation keeps grey grey",
       with(plain(all, red), blend(BlendMode::saturation)),
       {{{5.5, 5.5}, 0xff404040}}},
      {"saturation takes colour away",
       group(all,
             {plain(all, red), with(plain(all, Color::gray(0.7)), blend(BlendMode::saturation))}),
       {{{5.5, 5.5}, 0xff4d4d4d}}},
      {"gradient downwards",
       filled(all, GradientContent{{Color::black(), Color::white()}}),
       {{{3.5, 0.5}, 0xff060606, 3}, {{12.5, 10}, 0xff868686, 7}, {{3.5, 19.5}, 0xfff9f9f9, 3}}},
      {"gradient with stops, to the right",
       filled(all, GradientContent{{red, red, blue}, {0, 0.5, 0.5}, {0, 0.5}, {1, 0.5}}),
       {{{9.5, 3.5}, 0xffff0000}, {{10.5, 3.5}, 0xff0000ff}}},
      {"gradient of alphas stays white",
       filled(all, GradientContent{{Color::white(0), Color::white(1)}}),
       {{{3.5, 10}, 0xffa4a4a4, 6}}},
      {"image stretched over the layer",
       filled({0, 0, 20, 10}, image(2, 1, {255, 0, 0, 255, 0, 0, 255, 255})),
       {{{1.5, 5.5}, 0xffff0000},
        {{18.5, 5.5}, 0xff0000ff},
        {{10, 5.5}, 0xff7f007f, 14},
        {{10.5, 10.5}, 0xff404040}}},
      {"image with alpha is not premultiplied",
       filled(all, image(1, 1, {255, 0, 0, 128})),
       {{{5.5, 5.5}, 0xffa02020}}},
      {"feathering softens the edge and keeps the middle",
       with(shape({0, 0, 20, 20}, {{{{-20, -20, 30, 60}}}, false, Color::white()}),
            [](Layer& l) { l.featherRadius = 2; }),
       {{{10, 10.5}, 0xffa0a0a0, 22},
        {{2.5, 10.5}, 0xffffffff},
        {{18.5, 10.5}, 0xff404040},
        {{8.5, 10.5}, 0xffd3d3d3, 8},
        {{11.5, 10.5}, 0xff6b6b6b, 8}}},
  };
}

TEST(LayerRendererTest, DrawsWhatTheLayersSayAtAnyScale) {
  for (const LayerCase& c : layerCases()) {
    for (const double scale : {1.0, 1.5, 2.0, 3.0}) {
      SCOPED_TRACE(testing::Message() << c.name << " at " << scale);
      Raster target(static_cast<int>(20 * scale), static_cast<int>(20 * scale));
      target.fill(0xff404040);
      LayerRenderer(scale).render(*c.layer, target);
      for (const Probe& probe : c.probes) {
        const int x = static_cast<int>(probe.at.x * scale);
        const int y = static_cast<int>(probe.at.y * scale);
        // Twice as many pixels lie on each point; half-covered ones differ between scales.
        const int tolerance = probe.tolerance + (scale > 1 && probe.tolerance > 1 ? 60 : 0);
        EXPECT_LE(difference(target.at(x, y), probe.expected), tolerance)
            << std::hex << target.at(x, y) << " instead of " << probe.expected << " at " << std::dec
            << probe.at.x << ", " << probe.at.y;
      }
    }
  }
}

TEST(LayerRendererTest, OriginMovesEverything) {
  const auto layer = with(plain({1, 1, 3, 3}, red), [](Layer& l) {
    l.mask = plain({1, 1, 2, 2}, green);
    l.featherRadius = 0.4;
  });
  Raster still(30, 30);
  Raster moved(30, 30);
  LayerRenderer(2).render(*layer, still);
  LayerRenderer(2).render(*layer, moved, {4, 3});
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 20; ++x) {
      ASSERT_EQ(still.at(x, y), moved.at(x + 8, y + 6)) << x << ", " << y;
    }
  }
  EXPECT_NE(still.at(5, 5), 0U);
}

TEST(LayerRendererTest, FeatheringIsAGaussianAlsoWhereTheTargetEnds) {
  const double sigma = 3;
  Raster sharp(60, 60);
  auto layer = shape({0, 0, 60, 60}, {{{{-4, 12, 40, 20}, 6}}, false, Color::white()});
  // The reference is drawn on more than the target, which shows the middle of it.
  Raster wide(120, 120);
  LayerRenderer(1).render(*layer, wide, {30, 30});
  Raster expected = wide;
  layer->featherRadius = sigma;
  Raster actual(60, 60);
  LayerRenderer(1).render(*layer, actual);
  Raster framed(120, 120);
  LayerRenderer(1).render(*layer, framed, {30, 30});
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 60; ++x) {
      ASSERT_EQ(actual.at(x, y), framed.at(x + 30, y + 30)) << x << ", " << y;
    }
  }
  const Errors errors = errorsAgainstGaussian(expected, framed, sigma, 0);
  EXPECT_LT(errors.mean, 0.7);
  EXPECT_LT(errors.worst, 9);
}

TEST(LayerRendererTest, NothingBreaksOnNonsense) {
  const double odd[] = {nan, infinity, -infinity, -1, 0, 1e-9, 1e300, -1e300, 1};
  const ImageContent images[] = {image(0, 0, {}),
                                 image(-3, 5, {1, 2}),
                                 image(9, 9, {1, 2, 3}),
                                 {4, 4, nullptr},
                                 image(1 << 20, 1 << 20, {1, 2, 3, 4})};
  for (const auto& [width, height] : {std::pair{0, 0}, {1, 1}, {9, 2}}) {
    Raster target(width, height);
    for (const double value : odd) {
      for (const Rect& frame : {Rect{value, 0, 5, 5}, Rect{0, 0, value, value},
                                Rect{-value, -value, value, 2 * value}}) {
        auto layer = plain(frame, {value, value, value, value});
        layer->cornerRadius = value;
        layer->hasContinuousCorners = true;
        layer->masksToBounds = true;
        layer->opacity = value == 0 ? 1 : value;
        layer->zPosition = value;
        layer->featherRadius = value;
        layer->mask = plain(frame, Color::white());
        layer->content = ShapeContent{{{frame, value, true}}, true, red, blue, value};
        auto gradient = plain(frame, red);
        gradient->content = GradientContent{{red, blue}, {value, -value}, {value, 0}, {0, value}};
        layer->sublayers = {gradient, nullptr};
        for (const ImageContent& content : images) {
          layer->sublayers.push_back(
              with(plain(frame, red), [&](Layer& l) { l.content = content; }));
        }
        for (const double scale : odd) {
          LayerRenderer(scale).render(*layer, target, {value, value});
        }
      }
    }
    auto empty = group({0, 0, 5, 5}, {});
    empty->content = GradientContent{};
    LayerRenderer(1).render(*empty, target);
  }
}

TEST(LayerRendererTest, LayersInsideThemselvesAndTooDeepOnesAreLeftOut) {
  auto loop = plain({0, 0, 4, 4}, red);
  loop->mask = loop;
  loop->sublayers = {plain({4, 0, 4, 4}, blue), loop, loop};
  Raster target(8, 4);
  LayerRenderer(1).render(*loop, target);
  loop->mask = nullptr;
  LayerRenderer(1).render(*loop, target);
  EXPECT_EQ(target.at(1, 1), 0xffff0000);
  EXPECT_EQ(target.at(5, 1), 0xff0000ff);
  loop->sublayers.clear();

  auto deep = plain({0, 0, 4, 4}, green);
  for (int i = 0; i < 1000; ++i) {
    deep = group({0, 0, 4, 4}, {deep});
  }
  LayerRenderer(1).render(*deep, target);
  EXPECT_EQ(target.at(1, 1), 0xffff0000);
}

}  // namespace
}  // namespace plemora
