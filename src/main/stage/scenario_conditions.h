#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace plemora {

inline constexpr std::string_view scenarioDetailStates[] = {"closed", "growing", "open",
                                                            "collapsing", "fading"};

inline constexpr std::string_view scenarioSetupSteps[] = {"audio", "accessibility",
                                                          "control center", "sound icon"};
inline constexpr std::string_view scenarioStepStates[] = {"pending", "active", "in settings",
                                                          "working", "done"};
inline constexpr std::string_view scenarioHelperPlaces[] = {
    "under System Settings", "right of System Settings", "left of System Settings",
    "over System Settings", "beside Control Center"};

/// The mixer panel. What is none is not looked at.
struct PanelCondition {
  std::optional<bool> isOpen;
  /// The item of the menu bar below whose middle it hangs: the program's own, or Control Center's.
  enum class Under { statusItem, controlCenter };
  std::optional<Under> under;
  std::vector<std::string> shows;  ///< titles of rows
  std::vector<std::string> lacks;
};

/// One tile of Control Center's grid.
struct TileCondition {
  std::string name;
  std::optional<int> column, row;
  std::optional<std::string> size;  ///< such as "rect2x1"
};

struct ControlCenterCondition {
  std::optional<bool> isOpen;
  std::optional<bool> isEditing;
  /// Of which there are just so many; the others of the grid may be there or not.
  std::vector<TileCondition> tiles;
  std::vector<std::string> lacks;         ///< names of tiles
  std::optional<bool> understandsLayout;  ///< else it shows no tiles
  /// How often it has been launched since the curtain rose.
  std::optional<int> launches;
};

struct LevelCondition {
  std::optional<double> volume;  ///< 0...1, to a hundredth
  std::optional<bool> isMuted;
  std::optional<std::string> output;  ///< UID
};

struct DefaultDeviceCondition {
  std::optional<std::string> uid;
  std::optional<double> volume;
  std::optional<bool> isMuted;
};

/// The window of setup, and how far setup has come.
struct SetupCondition {
  std::optional<bool> isOpen;
  std::map<std::string, std::string> steps;  ///< each one of scenarioStepStates
};

/// The panel with instructions that setup puts beside System Settings or Control Center.
struct HelperCondition {
  std::optional<bool> isShown;
  std::optional<std::string> stands;  ///< one of scenarioHelperPlaces
};

/// All that a step may expect at once; every part of it must hold.
struct ScenarioConditions {
  std::map<std::string, bool> isRunning;  ///< by the name of the program
  std::optional<PanelCondition> panel;
  /// The program's module over its tiles is to be seen.
  std::optional<bool> hasModule;
  /// The panel that grows out of it: one of scenarioDetailStates.
  std::optional<std::string> detail;
  std::optional<ControlCenterCondition> controlCenter;
  std::optional<SetupCondition> setup;
  std::optional<HelperCondition> helper;
  /// The callout below the program's icon in the menu bar is to be seen.
  std::optional<bool> hasPointer;
  std::optional<std::string> front;  ///< name of the application in front; empty: none

  /// Settings of the program; monostate: absent.
  std::map<std::string, std::variant<std::monostate, bool, std::string>> defaults;
  std::optional<std::string> preferencesAs;     ///< byte for byte those remembered by that name
  std::optional<std::string> preferencesNotAs;  ///< any of the two values differs
  std::optional<bool> hasBackup;

  std::optional<std::vector<std::string>> devices;  ///< names, in any order
  std::optional<DefaultDeviceCondition> defaultDevice;
  std::map<std::string, LevelCondition> levels;  ///< by the name of the app

  /// Titles of the menu that is open.
  struct Menu {
    std::optional<bool> isOpen;
    std::vector<std::string> shows, lacks;
  };
  std::optional<Menu> menu;
  std::optional<std::string> settingsPane;  ///< the one that System Settings shows; empty: none
  std::optional<std::vector<std::string>> dock;  ///< names, in any order

  std::optional<std::string> printed;  ///< by the program since it was last started, line by line
  std::optional<std::vector<std::string>> urls;  ///< opened by anybody since the curtain rose
  std::optional<int> reloads;  ///< requests to reload the controls, since the curtain rose
};

}  // namespace plemora
