#include <gtest/gtest.h>

#include <QQuickWindow>
#include <QTest>
#include <array>

#include "glass/raster.h"
#include "views/app_icon_image.h"
#include "views/glass_item.h"
#include "views/image_providers.h"
#include "views/symbol_image.h"

namespace plemora {
namespace {

/// The sum of all alphas.
double ink(const QImage& image, const QRect& part = {}) {
  double sum = 0;
  const QRect all = part.isNull() ? image.rect() : part;
  for (int y = all.top(); y <= all.bottom(); ++y) {
    for (int x = all.left(); x <= all.right(); ++x) {
      sum += qAlpha(image.pixel(x, y)) / 255.0;
    }
  }
  return sum;
}

TEST(Symbols, WavesFillOneAfterTheOther) {
  for (const double value : {0.0, 0.2, 0.5, 0.9, 1.0}) {
    for (int wave = 1; wave < 3; ++wave) {
      EXPECT_LE(waveOpacity(value, wave, 3), waveOpacity(value, wave - 1, 3));
    }
  }
  EXPECT_GT(waveOpacity(0, 0, 3), 0.2);
  EXPECT_EQ(waveOpacity(1, 2, 3), 1);
  EXPECT_EQ(waveOpacity(0.34, 0, 3), 1);
  EXPECT_LT(waveOpacity(0.34, 1, 3), 0.35);
  // Every step of the level is seen.
  double before = -1;
  for (int i = 0; i <= 32; ++i) {
    const double now = ink(symbolImage({"speaker.wave.3.fill", i / 32.0, Qt::white, {44, 44}}));
    EXPECT_GT(now, before) << i;
    before = now;
  }
}

TEST(Symbols, AreTintedFittedAndAlwaysThere) {
  const QImage red = symbolImage({"headphones", {}, Qt::red, {40, 60}});
  EXPECT_EQ(red.size(), QSize(40, 60));
  EXPECT_GT(ink(red), 50);
  EXPECT_EQ(ink(red, {0, 0, 40, 9}), 0);  // centred in the height
  for (int y = 0; y < red.height(); ++y) {
    for (int x = 0; x < red.width(); ++x) {
      EXPECT_EQ(qRed(red.pixel(x, y)), qAlpha(red.pixel(x, y)));
      EXPECT_EQ(qBlue(red.pixel(x, y)), 0);
    }
  }
  EXPECT_FALSE(hasSymbol("no.such.symbol"));
  EXPECT_GT(ink(symbolImage({"no.such.symbol", {}, Qt::white, {32, 32}})), 50);
  EXPECT_TRUE(symbolImage({"headphones", {}, Qt::white, {0, 10}}).isNull());
  EXPECT_TRUE(symbolImage({"headphones", {}, Qt::white, {9000, 10}}).isNull());
}

TEST(Providers, ReadTheirOptionsFromTheAddress) {
  SymbolProvider symbols;
  QSize size;
  const QImage tinted = symbols.requestImage("headphones?color=8000ff00", &size, {24, 24});
  EXPECT_EQ(size, QSize(24, 24));
  for (int i = 0; i < 24 * 24; ++i) {
    EXPECT_LE(qAlpha(tinted.pixel(i % 24, i / 24)), 129);
  }
  EXPECT_EQ(symbols.requestImage("headphones", nullptr, {48, 0}).size(), QSize(48, 48));
  EXPECT_FALSE(symbols.requestImage("%00?color=zz&value=x", nullptr, {}).isNull());
  AppIconProvider icons;
  EXPECT_EQ(icons.requestImage("icon?source=&name=Music%20%26%20More", nullptr, {28, 28}),
            appIconImage({"", "Music & More", {28, 28}}));
}

TEST(AppIcons, MutedOnesLoseTheirColour) {
  const QImage colorful = appIconImage({"", "Music", {32, 32}, 1});
  const QImage gray = appIconImage({"", "Music", {32, 32}, 0});
  EXPECT_GT(colorful.pixelColor(16, 5).saturation(), 60);
  for (int y = 0; y < 32; ++y) {
    for (int x = 0; x < 32; ++x) {
      const QRgb pixel = gray.pixel(x, y);
      EXPECT_NEAR(qRed(pixel), qBlue(pixel), 2);
      EXPECT_EQ(qAlpha(pixel), qAlpha(colorful.pixel(x, y)));
    }
  }
}

TEST(GlassItemTest, ShowsItsPicturePixelByPixelAndTheNextOne) {
  QQuickWindow window;
  window.setGeometry(0, 0, 4, 3);
  window.setColor(Qt::black);
  GlassItem item(window.contentItem());
  item.setSize({4, 3});
  Raster raster(4, 3);
  for (const Pixel first : std::array<Pixel, 2>{0xff102030, 0xff405060}) {
    raster.fill(0xffffffff);
    raster.at(1, 2) = first;
    item.setRaster(raster);
    window.show();
    const QImage shown = window.grabWindow();
    EXPECT_EQ(shown.pixel(1, 2), first);
    EXPECT_EQ(shown.pixel(2, 2), 0xffffffff);
  }
  item.setRaster(Raster());
  EXPECT_EQ(window.grabWindow().pixel(1, 2), 0xff000000);
}

}  // namespace
}  // namespace plemora
