#pragma once

#include <stdexcept>
#include <string>

#include "platform/preferences.h"

namespace plemora {

class Clock;
class Files;
class Workspace;

/// Takes the system's Sound module out of Control Center and puts the program's control in its
/// place, by rewriting the preferences in which macOS keeps Control Center's layout; and undoes it.
/// Keeps nothing in memory between calls; on disk one backup file.
///
/// Everything is read and understood before anything is written, and the two values are stored in
/// such an order that a failure or a kill at any moment leaves both as they were, or both changed,
/// or what the same command puts right when it is run again. Operations throw std::exception with
/// a description for the user: Failure, NotStored, or what a parser says. Main thread.
class ControlCenterLayout {
 public:
  struct Layout;  ///< controlcenter/layout_record.h

  /// Control Center's bundle identifier, and the domain of its controls.
  static constexpr const char* mainDomain = "com.apple.controlcenter";
  static constexpr const char* layoutDomain = "com.apple.controlcenter.bentoboxes";
  static constexpr const char* boxesKey = "boxes";

  class Failure : public std::runtime_error {
   public:
    enum Case {
      unreadable,        ///< a value or the backup is missing or of another type
      unexpectedFormat,  ///< it was read and looks unlike what this program knows
      noSoundModule,     ///< the grid has no Sound to replace
    };
    explicit Failure(Case kind);

    Case kind() const { return kind_; }

   private:
    Case kind_;
  };

  /// The preferences or the backup could not be written.
  class NotStored : public std::runtime_error {
   public:
    using std::runtime_error::runtime_error;
  };

  /// All must outlive this object.
  ControlCenterLayout(Preferences& preferences, Files& files, Clock& clock, Workspace& workspace);

  /// Backs the layout up, takes Sound out, puts the program's two tiles into its row and restarts
  /// Control Center.
  void replaceSound();

  /// Puts both values back as they were before the first replacement, byte for byte, deletes the
  /// backup and restarts Control Center.
  void restore();

  /// Does without the backup: takes the program's tiles and controls out of the layout as it is
  /// now, and adds Sound where the grid has none.
  void putSoundBack(bool restart);

  /// Ends Control Center; the system starts it again.
  void restartControlCenter();

  /// Stores both values in the backup file unless there is one already: the oldest is kept.
  void saveBackup();

  /// Path of the backup file; its folder is there afterwards.
  std::string backupURL();

 private:
  Preferences& preferences_;
  Files& files_;
  Clock& clock_;
  Workspace& workspace_;
};

}  // namespace plemora
