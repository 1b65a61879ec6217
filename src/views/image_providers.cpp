#include "views/image_providers.h"

#include <QUrlQuery>

#include "views/app_icon_image.h"
#include "views/symbol_image.h"

namespace plemora {

namespace {

constexpr QSize defaultSize{32, 32};

/// QML asks for a size of 0 in a direction that it leaves open.
QSize pixels(const QSize& requested) {
  const int width = requested.width() > 0 ? requested.width() : requested.height();
  const int height = requested.height() > 0 ? requested.height() : requested.width();
  return width > 0 ? QSize(width, height) : defaultSize;
}

QUrlQuery options(const QString& id) {
  const auto mark = id.indexOf('?');
  return QUrlQuery(mark < 0 ? QString() : id.mid(mark + 1));
}

QString value(const QUrlQuery& query, const char* key) {
  return query.queryItemValue(key, QUrl::FullyDecoded);
}

QImage answer(const QImage& image, QSize* size) {
  if (size != nullptr) {
    *size = image.size();
  }
  return image;
}

}  // namespace

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requested) {
  const QUrlQuery query = options(id);
  SymbolRequest request{
      .name = id.section('?', 0, 0), .variableValue = {}, .pixels = pixels(requested)};
  if (const QColor color("#" + value(query, "color")); color.isValid()) {
    request.color = color;
  }
  bool isNumber = false;
  if (const double number = value(query, "value").toDouble(&isNumber); isNumber) {
    request.variableValue = number;
  }
  return answer(symbolImage(request), size);
}

QImage AppIconProvider::requestImage(const QString& id, QSize* size, const QSize& requested) {
  const QUrlQuery query = options(id);
  AppIconRequest request{
      .source = value(query, "source"), .name = value(query, "name"), .pixels = pixels(requested)};
  bool isNumber = false;
  if (const double number = value(query, "saturation").toDouble(&isNumber); isNumber) {
    request.saturation = number;
  }
  return answer(appIconImage(request), size);
}

}  // namespace plemora
