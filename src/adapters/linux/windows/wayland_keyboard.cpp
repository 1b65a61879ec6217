#include "adapters/linux/windows/wayland_keyboard.h"

#include <sys/mman.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon.h>

#include <QChar>
#include <algorithm>
#include <iterator>
#include <utility>

#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("windows");

/// Kernel key codes begin at this one in a layout.
constexpr std::uint32_t firstCode = 8;

struct NamedKey {
  xkb_keysym_t symbol;
  int key;
};

/// Keys that stand for no character, or for another one than they send.
constexpr NamedKey namedKeys[] = {
    {XKB_KEY_Escape, Qt::Key_Escape},
    {XKB_KEY_Tab, Qt::Key_Tab},
    {XKB_KEY_ISO_Left_Tab, Qt::Key_Backtab},
    {XKB_KEY_BackSpace, Qt::Key_Backspace},
    {XKB_KEY_Return, Qt::Key_Return},
    {XKB_KEY_KP_Enter, Qt::Key_Enter},
    {XKB_KEY_Delete, Qt::Key_Delete},
    {XKB_KEY_KP_Delete, Qt::Key_Delete},
    {XKB_KEY_Home, Qt::Key_Home},
    {XKB_KEY_KP_Home, Qt::Key_Home},
    {XKB_KEY_End, Qt::Key_End},
    {XKB_KEY_KP_End, Qt::Key_End},
    {XKB_KEY_Left, Qt::Key_Left},
    {XKB_KEY_KP_Left, Qt::Key_Left},
    {XKB_KEY_Up, Qt::Key_Up},
    {XKB_KEY_KP_Up, Qt::Key_Up},
    {XKB_KEY_Right, Qt::Key_Right},
    {XKB_KEY_KP_Right, Qt::Key_Right},
    {XKB_KEY_Down, Qt::Key_Down},
    {XKB_KEY_KP_Down, Qt::Key_Down},
    {XKB_KEY_Page_Up, Qt::Key_PageUp},
    {XKB_KEY_KP_Page_Up, Qt::Key_PageUp},
    {XKB_KEY_Page_Down, Qt::Key_PageDown},
    {XKB_KEY_KP_Page_Down, Qt::Key_PageDown},
    {XKB_KEY_Shift_L, Qt::Key_Shift},
    {XKB_KEY_Shift_R, Qt::Key_Shift},
    {XKB_KEY_Control_L, Qt::Key_Control},
    {XKB_KEY_Control_R, Qt::Key_Control},
    {XKB_KEY_Alt_L, Qt::Key_Alt},
    {XKB_KEY_Alt_R, Qt::Key_Alt},
    {XKB_KEY_Super_L, Qt::Key_Meta},
    {XKB_KEY_Super_R, Qt::Key_Meta},
    {XKB_KEY_Menu, Qt::Key_Menu},
};

int qtKey(xkb_keysym_t symbol) {
  const auto named = std::find_if(std::begin(namedKeys), std::end(namedKeys),
                                  [&](const NamedKey& entry) { return entry.symbol == symbol; });
  if (named != std::end(namedKeys)) {
    return named->key;
  }
  if (symbol >= XKB_KEY_F1 && symbol <= XKB_KEY_F35) {
    return Qt::Key_F1 + static_cast<int>(symbol - XKB_KEY_F1);
  }
  const std::uint32_t character = xkb_keysym_to_utf32(symbol);
  return character == 0 ? int{Qt::Key_unknown} : static_cast<int>(QChar::toUpper(character));
}

}  // namespace

void WaylandKeyboard::Deleter::operator()(xkb_context* object) const {
  xkb_context_unref(object);
}

void WaylandKeyboard::Deleter::operator()(xkb_keymap* object) const {
  xkb_keymap_unref(object);
}

void WaylandKeyboard::Deleter::operator()(xkb_state* object) const {
  xkb_state_unref(object);
}

WaylandKeyboard::WaylandKeyboard(std::function<void(const WaylandKey&)> handler)
    : handler_(std::move(handler)), context_(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES)) {
  QObject::connect(&repeat_, &QTimer::timeout, &repeat_, [this] {
    repeat_.setInterval(1000 / repeatRate_);
    const WaylandKey again = held_;
    handler_(again);
  });
}

WaylandKeyboard::~WaylandKeyboard() = default;

void WaylandKeyboard::setKeymap(int file, std::uint32_t size) {
  repeat_.stop();
  void* text = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
  close(file);
  state_.reset();
  keymap_.reset();
  if (text != MAP_FAILED) {
    keymap_.reset(xkb_keymap_new_from_string(context_.get(), static_cast<const char*>(text),
                                             XKB_KEYMAP_FORMAT_TEXT_V1,
                                             XKB_KEYMAP_COMPILE_NO_FLAGS));
    munmap(text, size);
  }
  if (!keymap_) {
    logger.error(
        "The desktop's keyboard layout cannot be read: the panel is used by the pointer alone. "
        "Choose another layout in the desktop's settings.");
    return;
  }
  state_.reset(xkb_state_new(keymap_.get()));
}

void WaylandKeyboard::setModifiers(std::uint32_t depressed, std::uint32_t latched,
                                   std::uint32_t locked, std::uint32_t group) {
  if (state_) {
    xkb_state_update_mask(state_.get(), depressed, latched, locked, 0, 0, group);
  }
}

void WaylandKeyboard::setRepeat(int rate, int delay) {
  repeatRate_ = std::clamp(rate, 0, 1000);
  repeatDelay_ = std::max(1, delay);
}

void WaylandKeyboard::key(std::uint32_t time, std::uint32_t code, bool isPress) {
  if (!state_) {
    return;
  }
  const std::uint32_t keyCode = code + firstCode;
  char text[16] = {};
  xkb_state_key_get_utf8(state_.get(), keyCode, text, sizeof text);
  const WaylandKey now{isPress,
                       false,
                       qtKey(xkb_state_key_get_one_sym(state_.get(), keyCode)),
                       QString::fromUtf8(text),
                       modifiers(),
                       time};
  if (isPress && repeatRate_ > 0 && xkb_keymap_key_repeats(keymap_.get(), keyCode) != 0) {
    held_ = now;
    held_.isRepeat = true;
    heldCode_ = code;
    repeat_.start(repeatDelay_);
  } else if (!isPress && code == heldCode_) {
    repeat_.stop();
  }
  handler_(now);
}

Qt::KeyboardModifiers WaylandKeyboard::modifiers() const {
  constexpr std::pair<const char*, Qt::KeyboardModifier> names[] = {
      {XKB_MOD_NAME_SHIFT, Qt::ShiftModifier},
      {XKB_MOD_NAME_CTRL, Qt::ControlModifier},
      {XKB_MOD_NAME_ALT, Qt::AltModifier},
      {XKB_MOD_NAME_LOGO, Qt::MetaModifier},
  };
  Qt::KeyboardModifiers result;
  for (const auto& [name, modifier] : names) {
    const bool isActive =
        state_ && xkb_state_mod_name_is_active(state_.get(), name, XKB_STATE_MODS_EFFECTIVE) > 0;
    result.setFlag(modifier, isActive);
  }
  return result;
}

}  // namespace plemora
