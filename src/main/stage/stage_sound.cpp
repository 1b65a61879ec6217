#include "main/stage/stage_sound.h"

#include <unistd.h>

#include "adapters/linux/desktop/client_directory.h"
#include "adapters/linux/desktop/linux_workspace.h"
#include "adapters/linux/desktop/qt_main_queue.h"
#include "adapters/linux/desktop/system_clock.h"
#include "adapters/linux/desktop/thread_queue.h"
#include "adapters/linux/pipewire/pipewire_audio.h"

namespace plemora {

// The order matters: what is used stands before its users.
struct StageSound::Parts {
  QtMainQueue mainQueue;
  SystemClock clock;
  ThreadQueueFactory queues;
  std::shared_ptr<ClientDirectory> clients = std::make_shared<ClientDirectory>();
  LinuxWorkspace workspace{DesktopPaths::fromEnvironment(), clients};
  PipeWireAudio audio{mainQueue, *clients};
};

StageSound::StageSound() : parts_(std::make_unique<Parts>()) {}

StageSound::~StageSound() = default;

std::shared_ptr<MixerModel> StageSound::makeModel(const MixerServices& stage) {
  return std::make_shared<MixerModel>(
      MixerServices{parts_->audio.properties(), parts_->audio.graph(), parts_->mainQueue,
                    parts_->queues, parts_->clock, parts_->workspace, stage.defaults,
                    parts_->audio.consent(), stage.system, stage.arguments, getpid()});
}

}  // namespace plemora
