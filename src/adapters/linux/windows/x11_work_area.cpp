#include "adapters/linux/windows/x11_work_area.h"

#include <QScreen>
#include <algorithm>
#include <utility>

namespace plemora {

namespace {

using Strut = X11WorkArea::Strut;

constexpr Strut::Edge edges[] = {Strut::Edge::left, Strut::Edge::right, Strut::Edge::top,
                                 Strut::Edge::bottom};
constexpr int everywhere = 0x7fff;

/// values: as in the properties, four thicknesses and, of the partial ones, four ranges.
std::vector<Strut> strutsOf(const std::vector<std::uint32_t>& values) {
  std::vector<Strut> struts;
  for (std::size_t i = 0; i < std::size(edges) && values.size() >= std::size(edges); ++i) {
    const bool isPartial = values.size() >= 12;
    const auto value = [&](std::size_t index) {
      return static_cast<int>(std::min<std::uint32_t>(values[index], everywhere));
    };
    if (values[i] > 0) {
      struts.push_back({edges[i], value(i), isPartial ? value(4 + 2 * i) : 0,
                        isPartial ? value(5 + 2 * i) : everywhere});
    }
  }
  return struts;
}

}  // namespace

X11WorkArea::X11WorkArea(X11Connection& connection, std::function<void()> changed)
    : connection_(connection), changed_(std::move(changed)) {
  rootEvents_ = connection_.watchRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
  events_ = connection_.observe([this](const auto& event) { handle(*event); });
  read();
}

void X11WorkArea::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) {
    return;
  }
  const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
  if (property.window == connection_.root() &&
      (property.atom == connection_.atom("_NET_WORKAREA") ||
       property.atom == connection_.atom("_NET_CLIENT_LIST"))) {
    read();
    changed_();
  }
}

void X11WorkArea::read() {
  auto* xcb = connection_.get();
  const auto question = xcb_get_geometry(xcb, connection_.root());
  const X11Owned<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(xcb, question, nullptr));
  desktop_ = root ? QSize(root->width, root->height) : QSize();
  struts_.clear();
  const auto clients =
      connection_.property(connection_.root(), connection_.atom("_NET_CLIENT_LIST"));
  for (const xcb_window_t client : clients) {
    auto values = connection_.property(client, connection_.atom("_NET_WM_STRUT_PARTIAL"), 12);
    if (values.empty()) {
      values = connection_.property(client, connection_.atom("_NET_WM_STRUT"), 4);
    }
    const auto struts = strutsOf(values);
    struts_.insert(struts_.end(), struts.begin(), struts.end());
  }
}

QRect X11WorkArea::usable(const QRect& screen, const QSize& desktop,
                          const std::vector<Strut>& struts) {
  QRect left = screen;
  for (const Strut& strut : struts) {
    const bool isHorizontal = strut.edge == Strut::Edge::top || strut.edge == Strut::Edge::bottom;
    const int first = isHorizontal ? screen.left() : screen.top();
    const int last = isHorizontal ? screen.right() : screen.bottom();
    if (strut.to < first || strut.from > last) {
      continue;  // along another screen
    }
    QRect remains = left;
    switch (strut.edge) {
      case Strut::Edge::left:
        remains.setLeft(std::max(left.left(), strut.thickness));
        break;
      case Strut::Edge::right:
        remains.setRight(std::min(left.right(), desktop.width() - strut.thickness - 1));
        break;
      case Strut::Edge::top:
        remains.setTop(std::max(left.top(), strut.thickness));
        break;
      case Strut::Edge::bottom:
        remains.setBottom(std::min(left.bottom(), desktop.height() - strut.thickness - 1));
        break;
    }
    if (remains.isValid()) {  // a strut that leaves nothing of a screen is meant for another one
      left = remains;
    }
  }
  return left;
}

QRect X11WorkArea::usable(const QScreen& screen) const {
  const QRect points = screen.geometry();
  const double scale = screen.devicePixelRatio();
  const QRect device(points.topLeft(), points.size() * scale);
  const QRect left = usable(device, desktop_, struts_);
  const QPointF origin = points.topLeft();
  return QRectF(origin + QPointF(left.topLeft() - device.topLeft()) / scale,
                QSizeF(left.size()) / scale)
      .toRect();
}

}  // namespace plemora
