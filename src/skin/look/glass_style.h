#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/effect_view.h"
#include "platform/main_queue.h"
#include "platform/panel_window.h"
#include "skin/look/tuned_backdrop_view.h"

namespace plemora {

/// The look of a panel's background, from a style string: "key=value" pieces and flags, separated
/// by commas. Any text is a style; what it does not say, or says unreadably, is at its default.
/// docs/formats/style-strings.md lists the keys. Main thread.
class GlassStyle {
 public:
  /// The empty style: the system's own glass, as it comes.
  static GlassStyle standard() { return {}; }

  GlassStyle() = default;
  /// The last one counts of a key that is given twice.
  explicit GlassStyle(std::string_view style);

  bool has(std::string_view key) const { return table_.contains(key); }
  /// None when the key is absent; empty for a flag.
  std::optional<std::string> value(std::string_view key) const;
  std::optional<double> number(std::string_view key) const;
  /// Twenty numbers joined by ":"; what is no number among them is skipped. None when the count
  /// differs.
  std::optional<ColorMatrix> matrix(std::string_view key) const;

  /// NSVisualEffectView.Material of "vev", that of menus for an unknown name; none without "vev".
  std::optional<int> material() const;

  TunedBackdropView::Tuning tuning() const;

  /// Shows the system's effect in the surface, tuned. Never null; the caller keeps it for as long
  /// as that background is shown.
  [[nodiscard]] std::unique_ptr<TunedBackdropView> makeTunedBackdrop(double cornerRadius,
                                                                     PanelSurface& surface,
                                                                     MainQueue& queue) const;

  /// Sets the options that the style names and the view has.
  void apply(SystemGlassView& glass) const;

  /// Puts the style's background and the content on top of it into the surface: nothing, a tuned
  /// backdrop, a plain material, or the system's own glass. The result is the tuned backdrop, which
  /// the caller keeps for as long as it is shown; null for all other backgrounds.
  [[nodiscard]] static std::unique_ptr<TunedBackdropView> make(double cornerRadius,
                                                               std::shared_ptr<HostedView> content,
                                                               const GlassStyle& style,
                                                               PanelSurface& surface,
                                                               MainQueue& queue);

  bool operator==(const GlassStyle&) const = default;

 private:
  std::map<std::string, std::string, std::less<>> table_;
};

}  // namespace plemora
