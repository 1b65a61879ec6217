#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/linux/dbus/mixer_service.h"
#include "adapters/linux/desktop/client_directory.h"
#include "adapters/linux/desktop/file_defaults.h"
#include "adapters/linux/desktop/linux_system_info.h"
#include "adapters/linux/desktop/linux_workspace.h"
#include "adapters/linux/desktop/qt_main_queue.h"
#include "adapters/linux/desktop/system_clock.h"
#include "adapters/linux/desktop/thread_queue.h"
#include "adapters/linux/pipewire/pipewire_audio.h"
#include "audio/mixer_model.h"

namespace plemora {

/// The engine on a Linux desktop: every seam with the adapter that stands for it here. Main
/// thread; needs a QCoreApplication that outlives it. Every tap is gone once it is destroyed.
class LinuxProgram {
 public:
  /// arguments: the program's, without its name.
  LinuxProgram(const std::vector<std::string>& arguments, std::string version);
  LinuxProgram(const LinuxProgram&) = delete;
  LinuxProgram& operator=(const LinuxProgram&) = delete;

  MixerService& service() { return service_; }

  // What the panel needs too.
  QtMainQueue& mainQueue() { return mainQueue_; }
  SystemClock& clock() { return clock_; }
  LinuxSystemInfo& system() { return system_; }
  FileDefaults& defaults() { return defaults_; }
  LinuxWorkspace& workspace() { return workspace_; }
  MixerModel& model() { return model_; }
  ConsentService& consent() { return audio_.consent(); }
  bool hasSoundServer() const { return audio_.isConnected(); }

 private:
  void connectionChanged(bool connected);

  // The order matters: what is used stands before its users.
  QtMainQueue mainQueue_;
  SystemClock clock_;
  ThreadQueueFactory queues_;
  LinuxSystemInfo system_;
  FileDefaults defaults_;
  std::shared_ptr<ClientDirectory> clients_ = std::make_shared<ClientDirectory>();
  LinuxWorkspace workspace_;
  PipeWireAudio audio_;
  MixerModel model_;
  MixerService service_;
  Timer patience_;
};

}  // namespace plemora
