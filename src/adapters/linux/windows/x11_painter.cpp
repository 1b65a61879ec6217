#include "adapters/linux/windows/x11_painter.h"

#include <xcb/composite.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace plemora {

namespace {

/// A resource of the server that is freed at the end of its scope.
template <typename Free>
class Resource {
 public:
  Resource(xcb_connection_t* connection, Free free)
      : id(xcb_generate_id(connection)), connection_(connection), free_(free) {}
  ~Resource() { free_(connection_, id); }
  Resource(const Resource&) = delete;
  Resource& operator=(const Resource&) = delete;

  const std::uint32_t id;

 private:
  xcb_connection_t* connection_;
  Free free_;
};

std::uint16_t extent(int value) {
  return static_cast<std::uint16_t>(std::clamp(value, 0, 0xffff));
}

std::int16_t coordinate(int value) {
  return static_cast<std::int16_t>(std::clamp(value, -0x8000, 0x7fff));
}

}  // namespace

X11Painter::X11Painter(X11Connection& connection) : connection_(connection) {
  auto* xcb = connection.get();
  if (!connection.firstEvent(xcb_render_id) || !connection.firstEvent(xcb_composite_id)) {
    return;
  }
  const auto renderCookie = xcb_render_query_version(xcb, 0, 11);
  const auto compositeCookie = xcb_composite_query_version(xcb, 0, 4);
  const auto formatsCookie = xcb_render_query_pict_formats(xcb);
  const X11Owned<xcb_render_query_version_reply_t> render(
      xcb_render_query_version_reply(xcb, renderCookie, nullptr));
  const X11Owned<xcb_composite_query_version_reply_t> composite(
      xcb_composite_query_version_reply(xcb, compositeCookie, nullptr));
  const X11Owned<xcb_render_query_pict_formats_reply_t> formats(
      xcb_render_query_pict_formats_reply(xcb, formatsCookie, nullptr));
  if (!render || !composite || composite->minor_version < 2 || !formats) {
    return;
  }
  for (auto screen = xcb_render_query_pict_formats_screens_iterator(formats.get()); screen.rem != 0;
       xcb_render_pictscreen_next(&screen)) {
    for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem != 0;
         xcb_render_pictdepth_next(&depth)) {
      for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data); visual.rem != 0;
           xcb_render_pictvisual_next(&visual)) {
        formats_[visual.data->visual] = visual.data->format;
        if (depth.data->depth == 32) {
          translucent_.push_back(visual.data->visual);
        }
      }
    }
  }
  const auto depth = connection.screen().root_depth;
  isAvailable_ = (depth == 24 || depth == 32) && formats_.contains(connection.screen().root_visual);
}

X11Painter::~X11Painter() {
  forgetScreen();
}

std::optional<xcb_pixmap_t> X11Painter::rootPixmap() {
  for (const char* name : {"_XROOTPMAP_ID", "ESETROOT_PMAP_ID"}) {
    const auto value = connection_.property(connection_.root(), connection_.atom(name), 1);
    if (value.empty() || value.front() == XCB_PIXMAP_NONE) {
      continue;
    }
    // The property may outlive the pixmap.
    const auto cookie = xcb_get_geometry(connection_.get(), value.front());
    const X11Owned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection_.get(), cookie, nullptr));
    if (geometry && geometry->depth == connection_.screen().root_depth) {
      return value.front();
    }
  }
  return std::nullopt;
}

void X11Painter::rememberScreen() {
  if (!isAvailable_ || remembered_ != XCB_PIXMAP_NONE || rootPixmap()) {
    return;
  }
  auto* xcb = connection_.get();
  const auto cookie = xcb_get_geometry(xcb, connection_.root());
  const X11Owned<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(xcb, cookie, nullptr));
  if (!root) {
    return;
  }
  remembered_ = xcb_generate_id(xcb);
  xcb_create_pixmap(xcb, root->depth, remembered_, connection_.root(), root->width, root->height);
  const Resource context(xcb, xcb_free_gc);
  const std::uint32_t values[] = {XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS, 0};
  xcb_create_gc(xcb, context.id, connection_.root(),
                XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, values);
  xcb_copy_area(xcb, connection_.root(), remembered_, context.id, 0, 0, 0, 0, root->width,
                root->height);
}

void X11Painter::forgetScreen() {
  if (remembered_ != XCB_PIXMAP_NONE) {
    xcb_free_pixmap(connection_.get(), remembered_);
    remembered_ = XCB_PIXMAP_NONE;
    connection_.flush();
  }
}

BackdropImage X11Painter::paint(const std::vector<X11Window>& windows, const QRect& area) {
  if (!isAvailable_ || area.isEmpty()) {
    return {};
  }
  auto* xcb = connection_.get();
  const xcb_screen_t& screen = connection_.screen();
  const Resource pixmap(xcb, xcb_free_pixmap);
  xcb_create_pixmap(xcb, screen.root_depth, pixmap.id, screen.root, extent(area.width()),
                    extent(area.height()));
  const Resource picture(xcb, xcb_render_free_picture);
  xcb_render_create_picture(xcb, picture.id, pixmap.id, formats_[screen.root_visual], 0, nullptr);
  paintBackground(picture.id, area);
  const bool hasAlpha = isComposited(connection_);
  for (const X11Window& window : windows) {
    paintWindow(picture.id, window, area, hasAlpha);
  }
  return fetch(pixmap.id, area);
}

void X11Painter::paintBackground(xcb_render_picture_t target, const QRect& area) {
  auto* xcb = connection_.get();
  const xcb_rectangle_t all{0, 0, extent(area.width()), extent(area.height())};
  xcb_render_fill_rectangles(xcb, XCB_RENDER_PICT_OP_SRC, target, {0, 0, 0, 0xffff}, 1, &all);
  const auto source = rootPixmap();
  if (!source && remembered_ == XCB_PIXMAP_NONE) {
    return;
  }
  // A root pixmap smaller than the screen is a tile.
  const Resource picture(xcb, xcb_render_free_picture);
  const std::uint32_t repeat = XCB_RENDER_REPEAT_NORMAL;
  xcb_render_create_picture(xcb, picture.id, source.value_or(remembered_),
                            formats_[connection_.screen().root_visual], XCB_RENDER_CP_REPEAT,
                            &repeat);
  xcb_render_composite(xcb, XCB_RENDER_PICT_OP_SRC, picture.id, XCB_RENDER_PICTURE_NONE, target,
                       coordinate(area.x()), coordinate(area.y()), 0, 0, 0, 0, all.width,
                       all.height);
}

void X11Painter::paintWindow(xcb_render_picture_t target, const X11Window& window,
                             const QRect& area, bool isComposited) {
  const auto format = formats_.find(window.visual);
  if (format == formats_.end()) {
    return;
  }
  auto* xcb = connection_.get();
  const Resource contents(xcb, xcb_free_pixmap);
  xcb_composite_name_window_pixmap(xcb, window.id, contents.id);
  const Resource picture(xcb, xcb_render_free_picture);
  xcb_render_create_picture(xcb, picture.id, contents.id, format->second, 0, nullptr);
  const QPoint offset = window.frame.topLeft() - area.topLeft();
  if (!window.shape.empty()) {
    xcb_render_set_picture_clip_rectangles(
        xcb, target, coordinate(offset.x()), coordinate(offset.y()),
        static_cast<std::uint32_t>(window.shape.size()), window.shape.data());
  }
  std::optional<Resource<decltype(&xcb_render_free_picture)>> mask;
  if (isComposited && window.opacity < 1) {
    mask.emplace(xcb, xcb_render_free_picture);
    const auto alpha = static_cast<std::uint16_t>(std::lround(window.opacity * 0xffff));
    xcb_render_create_solid_fill(xcb, mask->id, {0, 0, 0, alpha});
  }
  // Without a compositing manager the screen shows colours and no alpha.
  const bool hasAlpha = isComposited && std::find(translucent_.begin(), translucent_.end(),
                                                  window.visual) != translucent_.end();
  xcb_render_composite(xcb, hasAlpha || mask ? XCB_RENDER_PICT_OP_OVER : XCB_RENDER_PICT_OP_SRC,
                       picture.id, mask ? mask->id : xcb_render_picture_t{0}, target, 0, 0, 0, 0,
                       coordinate(offset.x()), coordinate(offset.y()), extent(window.frame.width()),
                       extent(window.frame.height()));
  if (!window.shape.empty()) {
    const std::uint32_t none = XCB_PIXMAP_NONE;
    xcb_render_change_picture(xcb, target, XCB_RENDER_CP_CLIP_MASK, &none);
  }
}

BackdropImage X11Painter::fetch(xcb_pixmap_t pixmap, const QRect& area) {
  auto* xcb = connection_.get();
  const auto cookie = xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, 0, 0,
                                    extent(area.width()), extent(area.height()), ~0U);
  const X11Owned<xcb_get_image_reply_t> reply(xcb_get_image_reply(xcb, cookie, nullptr));
  const auto count =
      static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height());
  if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) < count * 4) {
    return {};
  }
  BackdropImage image;
  image.width = area.width();
  image.height = area.height();
  image.pixels.resize(count);
  std::memcpy(image.pixels.data(), xcb_get_image_data(reply.get()), count * 4);
  for (unsigned int& pixel : image.pixels) {
    pixel |= 0xff000000U;
  }
  return image;
}

}  // namespace plemora
