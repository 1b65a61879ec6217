#include "adapters/stage/desktop/stage_control_elements.h"

#include <algorithm>
#include <utility>

#include "adapters/stage/desktop/stage_control_center.h"
#include "adapters/stage/desktop/stage_modules.h"

namespace plemora {

namespace {

using Elements = std::vector<AccessibilityElementPointer>;

/// What an element is told by, and where it is.
struct Facts {
  std::string role;
  std::string identifier;  ///< empty: it has none
  std::string title;
  std::optional<Rect> frame;  ///< global, y up
};

class ControlCenterElement : public AccessibilityElement {
 public:
  enum class Kind {
    application,
    extrasBar,
    extra,
    panelWindow,
    editingWindow,
    grid,
    tile,
    slider,
    detailButton,  // has no identifier either, but stands above the edit button
    removeButton,
    editButton,
    galleryEntry,
  };

  ControlCenterElement(std::shared_ptr<StageControlCenter*> owner, std::int32_t pid, Kind kind,
                       std::string id = {}, std::size_t index = 0)
      : owner_(std::move(owner)), pid_(pid), kind_(kind), id_(std::move(id)), index_(index) {}

  std::optional<AccessibilityValue> attribute(const std::string& name) override;
  bool perform(const std::string& action) override;

 private:
  StageControlCenter& center() const { return **owner_; }
  bool isProcessThere() const { return *owner_ != nullptr && center().pid() == pid_; }
  /// The tile that it is, or is part of; null: none is shown.
  const StageTile* tile() const;
  std::optional<Facts> facts() const;
  std::optional<Facts> factsOfTile(const StageTile& tile) const;
  Elements children() const;
  Elements windows() const;
  AccessibilityElementPointer make(Kind kind, std::string id = {}, std::size_t index = 0) const {
    return std::make_shared<ControlCenterElement>(owner_, pid_, kind, std::move(id), index);
  }

  std::shared_ptr<StageControlCenter*> owner_;
  std::int32_t pid_;
  Kind kind_;
  std::string id_;  // of the tile, or identifier of the extra
  std::size_t index_;
};

const StageTile* ControlCenterElement::tile() const {
  const StageTile* tile = center().grid().tile(id_);
  return tile != nullptr && center().isShown(*tile) ? tile : nullptr;
}

std::optional<Facts> ControlCenterElement::factsOfTile(const StageTile& tile) const {
  const Rect frame = center().panel().tile(tile);
  const StageModule* module = findStageModule(tile.module);
  const std::string name = module == nullptr ? tile.name() : std::string(module->name);
  switch (kind_) {
    case Kind::slider:
      return Facts{"AXSlider", "slider-" + tile.module, name, center().slider(tile)};
    case Kind::detailButton:
      return Facts{"AXButton", "", "Show details", StageControlPanel::detailButton(frame)};
    case Kind::removeButton:
      return Facts{"AXButton", "remove-" + tile.id, "Remove " + name,
                   StageControlPanel::removeBadge(frame)};
    default:
      return Facts{"AXButton",
                   tile.control ? tile.control->extensionID + ":" + tile.control->kind
                                : "com.apple.controlcenter.module." + tile.module,
                   name, frame};
  }
}

std::optional<Facts> ControlCenterElement::facts() const {
  switch (kind_) {
    case Kind::application:
      return Facts{"AXApplication", "", StageControlCenter::processName, std::nullopt};
    case Kind::extrasBar:
      return Facts{"AXMenuBar", "", "", std::nullopt};
    case Kind::extra:
      for (const auto& extra : center().extras()) {
        if (extra->identifier == id_) {
          return Facts{"AXMenuBarItem", id_, extra->label, extra->frame};
        }
      }
      return std::nullopt;
    default:
      break;
  }
  if (!center().isOnScreen()) {
    return std::nullopt;
  }
  const StageControlPanel panel = center().panel();
  switch (kind_) {
    case Kind::panelWindow:
      return Facts{"AXWindow", "", "Control Center", panel.window};
    case Kind::grid:
      return Facts{"AXGroup", "", "", panel.panel};
    case Kind::editButton:
      return Facts{"AXButton", "", center().isEditing() ? "Done" : "Edit Controls",
                   panel.editButton};
    case Kind::editingWindow:
      return Facts{"AXWindow", "", "Controls", center().space().main()};
    case Kind::galleryEntry: {
      const auto gallery = center().gallery();
      if (!center().isEditing() || index_ >= gallery.size()) {
        return std::nullopt;
      }
      return Facts{"AXButton", "gallery-" + gallery[index_], gallery[index_],
                   StageControlPanel::galleryEntry(center().space().main(), index_)};
    }
    default: {
      const StageTile* shown = tile();
      return shown == nullptr ? std::nullopt : factsOfTile(*shown);
    }
  }
}

Elements ControlCenterElement::windows() const {
  Elements result;
  if (center().isOnScreen()) {
    result.push_back(make(Kind::panelWindow));
    if (center().isEditing()) {
      result.push_back(make(Kind::editingWindow));
    }
  }
  return result;
}

Elements ControlCenterElement::children() const {
  Elements result;
  switch (kind_) {
    case Kind::application:
      return windows();
    case Kind::extrasBar:
      for (const auto& extra : center().extras()) {
        result.push_back(make(Kind::extra, extra->identifier));
      }
      break;
    case Kind::panelWindow:
      result.push_back(make(Kind::grid));
      break;
    case Kind::grid:
      for (const StageTile& shown : center().shownTiles()) {
        result.push_back(make(Kind::tile, shown.id));
      }
      result.push_back(make(Kind::editButton));
      break;
    case Kind::editingWindow:
      for (std::size_t index = 0; index < center().gallery().size(); ++index) {
        result.push_back(make(Kind::galleryEntry, {}, index));
      }
      break;
    case Kind::tile:
      if (const StageTile* shown = tile()) {
        if (center().isEditing()) {
          result.push_back(make(Kind::removeButton, id_));
        } else if (StageControlCenter::hasSlider(*shown)) {
          result.push_back(make(Kind::slider, id_));
          result.push_back(make(Kind::detailButton, id_));
        }
      }
      break;
    default:
      break;
  }
  return result;
}

std::optional<AccessibilityValue> ControlCenterElement::attribute(const std::string& name) {
  const auto known = isProcessThere() ? facts() : std::nullopt;
  if (!known) {
    return std::nullopt;
  }
  if (name == "AXRole") {
    return known->role;
  }
  if (name == "AXIdentifier" && !known->identifier.empty()) {
    return known->identifier;
  }
  if (name == "AXTitle" && !known->title.empty()) {
    return known->title;
  }
  if (name == "AXPosition" && known->frame) {
    return center().space().flipped(*known->frame).origin();
  }
  if (name == "AXSize" && known->frame) {
    return known->frame->size();
  }
  if (name == "AXChildren") {
    return children();
  }
  if (name == "AXWindows" && kind_ == Kind::application) {
    return windows();
  }
  if (name == "AXExtrasMenuBar" && kind_ == Kind::application) {
    return make(Kind::extrasBar);
  }
  if (name == "AXValue" && kind_ == Kind::slider) {
    return center().sliderValue(*tile());
  }
  return std::nullopt;
}

bool ControlCenterElement::perform(const std::string& action) {
  if (action != "AXPress" || !isProcessThere() || !facts()) {
    return false;
  }
  switch (kind_) {
    case Kind::extra:
      for (const auto& extra : center().extras()) {
        if (extra->identifier == id_ && extra->clicked) {
          const auto clicked = extra->clicked;
          clicked(StatusButtonEvent::leftMouseDown);
          return true;
        }
      }
      return false;
    case Kind::tile:
      center().pressTile(id_);
      return true;
    case Kind::removeButton:
      return center().removeTile(id_);
    case Kind::editButton:
      center().pressEditButton();
      return true;
    case Kind::galleryEntry:
      return center().addGalleryEntry(index_);
    default:
      return false;
  }
}

}  // namespace

AccessibilityElementPointer makeControlCenterElement(
    std::shared_ptr<StageControlCenter*> controlCenter, std::int32_t pid) {
  return std::make_shared<ControlCenterElement>(std::move(controlCenter), pid,
                                                ControlCenterElement::Kind::application);
}

}  // namespace plemora
