#pragma once

#include <memory>

#include "audio/mixer_model.h"

namespace plemora {

/// The engine of the program on the real sound server instead of the stage's hardware: its sliders
/// move what this computer plays. Main thread; needs a QCoreApplication.
class StageSound {
 public:
  StageSound();
  ~StageSound();
  StageSound(const StageSound&) = delete;
  StageSound& operator=(const StageSound&) = delete;

  /// A mixer with those services but for what has to do with sound. It goes before this.
  std::shared_ptr<MixerModel> makeModel(const MixerServices& stage);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace plemora
