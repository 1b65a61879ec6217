#pragma once

#include <QTemporaryDir>
#include <cstdint>
#include <set>

#include "adapters/stage/desktop/stage_workspace.h"

namespace plemora {

/// Gives the applications of the stage icons that can be seen: pictures in files, as the icons of
/// real applications are. The files go with it. GUI thread.
class StageIcons {
 public:
  /// The workspace outlives it.
  explicit StageIcons(StageWorkspace& workspace) : workspace_(workspace) {}

  /// Sees to the applications that have been started since.
  void update();

 private:
  QString fileFor(const std::string& name);

  StageWorkspace& workspace_;
  QTemporaryDir folder_;
  std::set<std::int32_t> done_;  // process identifiers; the stage uses none twice
};

}  // namespace plemora
