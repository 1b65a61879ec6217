#include "watched_desktop.h"

#include <poll.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "support/pipewire/private_session.h"
#include "support/wait.h"

namespace plemora::rig {

namespace {

using namespace std::chrono_literals;

constexpr int screenWidth = 1280;
constexpr int screenHeight = 800;
constexpr int trayHeight = 30;
constexpr std::uint8_t escapeKey = 9;

constexpr char trayConfiguration[] = R"(panels=panel1
[panel1]
alignment=-1
animation-duration=0
desktop=0
hidable=false
iconSize=22
lineCount=1
lockPanel=true
panelSize=30
plugins=spacer, statusnotifier
position=Top
width=100
width-percent=true
[spacer]
type=spacer
expandable=true
[statusnotifier]
type=statusnotifier
alignment=Right
)";

template <typename Reply>
std::unique_ptr<Reply, decltype(&free)> owned(Reply* reply) {
  return {reply, &free};
}

bool meets(const Area& area, const xcb_rectangle_t& other) {
  return other.x < area.x + area.width && area.x < other.x + other.width &&
         other.y < area.y + area.height && area.y < other.y + other.height;
}

}  // namespace

WatchedDesktop::WatchedDesktop(PrivateSession& session) : session_(session) {
  start({"Xvfb", "-displayfd", "1", "-screen", "0",
         std::to_string(screenWidth) + "x" + std::to_string(screenHeight) + "x24", "-nolisten",
         "tcp", "-noreset"},
        true);
  const auto number = programs_.front()->readLine(10);
  if (!number) {
    throw std::runtime_error("Xvfb did not start");
  }
  setenv("DISPLAY", (":" + *number).c_str(), 1);
  xcb_ = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(xcb_) != 0) {
    throw std::runtime_error("no connection to Xvfb");
  }
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(xcb_)).data;
  damageEvent_ = xcb_get_extension_data(xcb_, &xcb_damage_id)->first_event + XCB_DAMAGE_NOTIFY;
  owned(xcb_damage_query_version_reply(xcb_, xcb_damage_query_version(xcb_, 1, 1), nullptr));
  start({"hsetroot", "-solid", "#305070"});
  programs_.back()->wait(10);
  start({"openbox", "--sm-disable"});
  start({"picom", "--backend", "xrender", "--config", "/dev/null"});
  const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(xcb_, screen_->root, XCB_CW_EVENT_MASK, &events);
  const auto damage = xcb_generate_id(xcb_);
  xcb_damage_create(xcb_, damage, screen_->root, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
  startTray();
}

WatchedDesktop::~WatchedDesktop() {
  xcb_disconnect(xcb_);
  while (!programs_.empty()) {
    programs_.pop_back();
  }
}

void WatchedDesktop::start(std::vector<std::string> arguments, bool isServer) {
  ChildOptions options;
  options.arguments = std::move(arguments);
  options.environment = session_.environment();
  if (!isServer) {
    options.environment.push_back(std::string("DISPLAY=") + getenv("DISPLAY"));
    options.environment.push_back("XDG_CURRENT_DESKTOP=LXQt");
  }
  options.logFile = session_.directory() + "/desktop.log";
  options.readable = isServer;
  programs_.push_back(std::make_unique<ChildProcess>(options));
}

void WatchedDesktop::startTray() {
  const std::filesystem::path folder = session_.directory() + "/config/lxqt";
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "panel.conf") << trayConfiguration;
  const Area place{0, 0, screenWidth, trayHeight};
  const Pixels before = pixels(place);
  start({"lxqt-panel"});
  if (!eventually(15, [&] { return pixels(place) != before; })) {
    throw std::runtime_error("lxqt-panel did not appear\n" + session_.logs());
  }
  settle();
}

WatchedDesktop::Pixels WatchedDesktop::pixels(const Area& area) {
  const auto image = owned(xcb_get_image_reply(
      xcb_,
      xcb_get_image(xcb_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root,
                    static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                    static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height),
                    ~0U),
      nullptr));
  if (!image) {
    throw std::runtime_error("the screen cannot be read");
  }
  const std::uint8_t* data = xcb_get_image_data(image.get());
  return {data, data + xcb_get_image_data_length(image.get())};
}

Area WatchedDesktop::frameOf(xcb_window_t window) {
  const auto size = owned(xcb_get_geometry_reply(xcb_, xcb_get_geometry(xcb_, window), nullptr));
  const auto place = owned(xcb_translate_coordinates_reply(
      xcb_, xcb_translate_coordinates(xcb_, window, screen_->root, 0, 0), nullptr));
  if (!size || !place) {
    return {};
  }
  return {place->dst_x, place->dst_y, size->width, size->height};
}

xcb_window_t WatchedDesktop::topLevel(xcb_window_t window) {
  while (true) {
    const auto tree = owned(xcb_query_tree_reply(xcb_, xcb_query_tree(xcb_, window), nullptr));
    if (!tree || tree->parent == screen_->root || tree->parent == 0) {
      return window;
    }
    window = tree->parent;
  }
}

bool WatchedDesktop::isShown(xcb_window_t window) {
  const auto reply = owned(
      xcb_get_window_attributes_reply(xcb_, xcb_get_window_attributes(xcb_, window), nullptr));
  return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

void WatchedDesktop::watch(xcb_window_t window) {
  xcb_damage_create(xcb_, xcb_generate_id(xcb_), window, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
  xcb_flush(xcb_);
}

std::unique_ptr<xcb_generic_event_t, decltype(&free)> WatchedDesktop::next(Instant until) {
  xcb_flush(xcb_);
  while (true) {
    if (auto* event = xcb_poll_for_event(xcb_)) {
      return owned(event);
    }
    const auto left = until - std::chrono::steady_clock::now();
    if (left <= 0s || xcb_connection_has_error(xcb_) != 0) {
      return owned<xcb_generic_event_t>(nullptr);
    }
    pollfd descriptor{xcb_get_file_descriptor(xcb_), POLLIN, 0};
    poll(&descriptor, 1,
         static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(left).count()) + 1);
  }
}

void WatchedDesktop::settle() {
  const auto deadline = std::chrono::steady_clock::now() + 5s;
  while (std::chrono::steady_clock::now() < deadline &&
         next(std::chrono::steady_clock::now() + 500ms)) {
  }
}

std::optional<std::pair<Area, Instant>> WatchedDesktop::iconAfter(
    const std::function<void()>& action) {
  settle();
  const Area tray{0, 0, screenWidth, trayHeight};
  const Pixels before = pixels(tray);
  const auto deadline = std::chrono::steady_clock::now() + 10s;
  action();
  while (const auto event = next(deadline)) {
    if ((event->response_type & 0x7f) != damageEvent_) {
      continue;
    }
    const auto* damage = reinterpret_cast<const xcb_damage_notify_event_t*>(event.get());
    if (damage->drawable != screen_->root || !meets(tray, damage->area)) {
      continue;
    }
    const auto now = std::chrono::steady_clock::now();
    if (pixels(tray) == before) {
      continue;
    }
    settle();
    const Pixels after = pixels(tray);
    int left = screenWidth;
    int right = -1;
    for (std::size_t i = 0; i < after.size(); ++i) {
      if (after[i] != before[i]) {
        const int x = static_cast<int>(i / 4) % screenWidth;
        left = std::min(left, x);
        right = std::max(right, x);
      }
    }
    return std::pair{Area{left, 0, right - left + 1, trayHeight}, now};
  }
  return std::nullopt;
}

std::optional<FirstFrame> WatchedDesktop::frameAfter(const std::function<void()>& action) {
  settle();
  const Pixels before = pixels({0, 0, screenWidth, screenHeight});
  const auto deadline = std::chrono::steady_clock::now() + 10s;
  FirstFrame frame;
  action();
  while (const auto event = next(deadline)) {
    const int type = event->response_type & 0x7f;
    if (type == XCB_CREATE_NOTIFY) {
      // Before it is drawn into; too small ones may still grow.
      watch(reinterpret_cast<const xcb_create_notify_event_t*>(event.get())->window);
      continue;
    }
    if (type != damageEvent_) {
      continue;
    }
    const auto now = std::chrono::steady_clock::now();
    const auto* damage = reinterpret_cast<const xcb_damage_notify_event_t*>(event.get());
    if (damage->drawable != screen_->root) {
      if (frame.window == 0 && damage->geometry.width > 200 && damage->geometry.height > 100) {
        // The frame of the window manager is drawn before what is in it: the last word has the
        // one that is drawn when the screen shows something new.
        frame.drawn = now;
        frame.window = damage->drawable;
        frame.place = frameOf(topLevel(damage->drawable));
      }
      continue;
    }
    if (frame.window == 0 || !meets(frame.place, damage->area)) {
      continue;
    }
    // A line down its middle.
    const Area line{frame.place.x + frame.place.width / 2, frame.place.y, 1, frame.place.height};
    const Pixels shown = pixels(line);
    for (int y = 0; y < line.height; ++y) {
      const std::size_t old =
          (static_cast<std::size_t>(line.y + y) * screenWidth + static_cast<std::size_t>(line.x)) *
          4;
      if (!std::equal(shown.begin() + y * 4, shown.begin() + y * 4 + 4,
                      before.begin() + static_cast<std::ptrdiff_t>(old))) {
        frame.seen = now;
        return frame;
      }
    }
  }
  return std::nullopt;
}

void WatchedDesktop::fake(int type, int detail, int x, int y) {
  xcb_test_fake_input(xcb_, static_cast<std::uint8_t>(type), static_cast<std::uint8_t>(detail), 0,
                      screen_->root, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
  xcb_flush(xcb_);
}

void WatchedDesktop::movePointer(int x, int y) {
  fake(XCB_MOTION_NOTIFY, 0, x, y);
}

void WatchedDesktop::button(bool isDown) {
  fake(isDown ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, 1);
}

void WatchedDesktop::click(int x, int y) {
  movePointer(x, y);
  button(true);
  button(false);
}

void WatchedDesktop::pressEscape() {
  fake(XCB_KEY_PRESS, escapeKey);
  fake(XCB_KEY_RELEASE, escapeKey);
}

void WatchedDesktop::save(const std::string& file) {
  const Pixels all = pixels({0, 0, screenWidth, screenHeight});
  std::ofstream out(file, std::ios::binary);
  out << "P6\n" << screenWidth << ' ' << screenHeight << "\n255\n";
  for (std::size_t i = 0; i + 3 < all.size(); i += 4) {
    out.put(static_cast<char>(all[i + 2]));
    out.put(static_cast<char>(all[i + 1]));
    out.put(static_cast<char>(all[i]));
  }
}

}  // namespace plemora::rig
