#include "adapters/linux/windows/x11_window_stack.h"

#include <xcb/shape.h>

#include <algorithm>
#include <string>

namespace plemora {

namespace {

struct Candidate {
  xcb_window_t id;
  xcb_get_window_attributes_cookie_t attributes;
  xcb_get_geometry_cookie_t geometry;
};

/// The children of the root window below the ceiling, each with its questions under way.
std::vector<Candidate> ask(X11Connection& connection, const std::vector<xcb_window_t>& ceiling) {
  auto* xcb = connection.get();
  const auto cookie = xcb_query_tree(xcb, connection.root());
  const X11Owned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(xcb, cookie, nullptr));
  std::vector<Candidate> candidates;
  if (!tree) {
    return candidates;
  }
  const auto* first = xcb_query_tree_children(tree.get());
  const auto* end = std::find_first_of(first, first + xcb_query_tree_children_length(tree.get()),
                                       ceiling.begin(), ceiling.end());
  for (const auto* child = first; child != end; ++child) {
    candidates.push_back(
        {*child, xcb_get_window_attributes(xcb, *child), xcb_get_geometry(xcb, *child)});
  }
  return candidates;
}

std::vector<X11Window> visible(X11Connection& connection, const std::vector<Candidate>& candidates,
                               const QRect& area) {
  std::vector<X11Window> windows;
  for (const Candidate& candidate : candidates) {
    const X11Owned<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection.get(), candidate.attributes, nullptr));
    const X11Owned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection.get(), candidate.geometry, nullptr));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) {
      continue;
    }
    X11Window window;
    window.id = candidate.id;
    window.border = geometry->border_width;
    window.frame = {geometry->x, geometry->y, geometry->width + 2 * window.border,
                    geometry->height + 2 * window.border};
    window.visual = attributes->visual;
    window.depth = geometry->depth;
    if (window.frame.intersects(area)) {
      windows.push_back(std::move(window));
    }
  }
  return windows;
}

}  // namespace

std::vector<X11Window> windowsBelow(X11Connection& connection,
                                    const std::vector<xcb_window_t>& ceiling, const QRect& area) {
  auto* xcb = connection.get();
  auto windows = visible(connection, ask(connection, ceiling), area);

  const bool canShape = connection.firstEvent(xcb_shape_id).has_value();
  std::vector<xcb_shape_query_extents_cookie_t> extents;
  std::vector<xcb_shape_get_rectangles_cookie_t> shapes;
  for (const X11Window& window : windows) {
    if (canShape) {
      extents.push_back(xcb_shape_query_extents(xcb, window.id));
      shapes.push_back(xcb_shape_get_rectangles(xcb, window.id, XCB_SHAPE_SK_BOUNDING));
    }
  }
  const xcb_atom_t opacityAtom = connection.atom("_NET_WM_WINDOW_OPACITY");
  for (std::size_t i = 0; i < windows.size(); ++i) {
    X11Window& window = windows[i];
    const auto opacity = connection.property(window.id, opacityAtom, 1);
    window.opacity = opacity.empty() ? 1 : opacity.front() / double{0xffffffffU};
    if (!canShape) {
      continue;
    }
    const X11Owned<xcb_shape_query_extents_reply_t> extent(
        xcb_shape_query_extents_reply(xcb, extents[i], nullptr));
    const X11Owned<xcb_shape_get_rectangles_reply_t> shape(
        xcb_shape_get_rectangles_reply(xcb, shapes[i], nullptr));
    if (extent && shape && extent->bounding_shaped != 0) {
      const auto* rectangles = xcb_shape_get_rectangles_rectangles(shape.get());
      window.shape.assign(rectangles,
                          rectangles + xcb_shape_get_rectangles_rectangles_length(shape.get()));
      // The shape counts from the inside of the border; one of nothing hides the window.
      for (xcb_rectangle_t& rectangle : window.shape) {
        rectangle.x = static_cast<std::int16_t>(rectangle.x + window.border);
        rectangle.y = static_cast<std::int16_t>(rectangle.y + window.border);
      }
      if (window.shape.empty()) {
        window.opacity = 0;
      }
    }
  }
  std::erase_if(windows, [](const X11Window& window) { return window.opacity <= 0; });
  return windows;
}

bool isComposited(X11Connection& connection) {
  const xcb_atom_t selection =
      connection.atom("_NET_WM_CM_S" + std::to_string(connection.screenNumber()));
  const auto cookie = xcb_get_selection_owner(connection.get(), selection);
  const X11Owned<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(connection.get(), cookie, nullptr));
  return reply && reply->owner != XCB_WINDOW_NONE;
}

}  // namespace plemora
