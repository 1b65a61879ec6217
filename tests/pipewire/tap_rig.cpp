#include "pipewire/tap_rig.h"

#include <QCoreApplication>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "audio/objects/audio_object.h"
#include "platform/audio_constants.h"

namespace plemora::rig {

TapRig::TapRig(int quantum) {
  static int argc = 1;
  static char name[] = "tap_rig";
  static char* argv[] = {name, nullptr};
  session.createSinks(quantum);
  application_ = std::make_unique<QCoreApplication>(argc, argv);
  mainQueue_ = std::make_unique<QtMainQueue>();
  clients_ = std::make_unique<ClientDirectory>();
  audio_ = std::make_unique<PipeWireAudio>(*mainQueue_, *clients_);
  graph_ = &audio_->graph();
  if (!eventually(5, [this] { return deviceOf("first") != 0 && deviceOf("second") != 0; })) {
    throw std::runtime_error("the back end does not list the sinks\n" + session.logs());
  }
}

TapRig::~TapRig() {
  audio_.reset();
  mainQueue_.reset();
}

bool TapRig::eventually(double seconds, const std::function<bool()>& question) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (true) {
    QCoreApplication::processEvents();
    if (question()) {
      return true;
    }
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

AudioObjectID TapRig::processOf(pid_t pid) {
  AudioObjectID result = 0;
  eventually(5, [&] {
    const AudioObject system(audio_->properties(), kAudioObjectSystemObject);
    for (const auto process : system.getArray(kAudioHardwarePropertyProcessObjectList,
                                              kAudioObjectPropertyScopeGlobal)) {
      const AudioObject object(audio_->properties(), process);
      if (object.readValue<std::int32_t>(kAudioProcessPropertyPID,
                                         kAudioObjectPropertyScopeGlobal) == pid) {
        result = process;
      }
    }
    return result != 0;
  });
  return result;
}

AudioObjectID TapRig::deviceOf(const std::string& sink) {
  const AudioObject system(audio_->properties(), kAudioObjectSystemObject);
  for (const auto device :
       system.getArray(kAudioHardwarePropertyDevices, kAudioObjectPropertyScopeGlobal)) {
    const AudioObject object(audio_->properties(), device);
    const auto uid =
        object.getString(kAudioDevicePropertyDeviceUID, kAudioObjectPropertyScopeGlobal);
    if (uid && uid->find(sink) != std::string::npos) {
      return device;
    }
  }
  return 0;
}

std::string TapRig::uidOf(const std::string& sink) {
  const AudioObject object(audio_->properties(), deviceOf(sink));
  return object.getString(kAudioDevicePropertyDeviceUID, kAudioObjectPropertyScopeGlobal)
      .value_or("");
}

std::vector<std::string> TapRig::devicesOf(AudioObjectID process) {
  std::vector<std::string> result;
  const AudioObject object(audio_->properties(), process);
  for (const auto device :
       object.getArray(kAudioProcessPropertyDevices, kAudioObjectPropertyScopeOutput)) {
    const AudioObject found(audio_->properties(), device);
    result.push_back(found.getString(kAudioDevicePropertyDeviceUID, kAudioObjectPropertyScopeGlobal)
                         .value_or(""));
  }
  return result;
}

std::unique_ptr<AppTap> TapRig::tap(const TonePlayer& player, float gain, const std::string& output,
                                    const std::string& source) {
  auto state = std::make_shared<RenderState>();
  state->targetGain = gain;
  state->currentGain = gain;
  TapDesign design;
  design.bundleID = player.name();
  design.processObjects = {processOf(player.pid())};
  design.outputUID = uidOf(output);
  design.sourceUID = uidOf(source);
  auto tap = std::make_unique<AppTap>(audio_->properties(), *graph_, clock_, design,
                                      queues_.makeQueue("rig"), state);
  if (!tap->start(deviceOf(output))) {
    return nullptr;
  }
  return tap;
}

std::unique_ptr<TonePlayer> TapRig::play(const ToneOptions& options, const std::string& sink) {
  auto player = std::make_unique<TonePlayer>(session, options);
  if (!player->waitUntilStreaming() || !session.waitForLink(options.name, sink)) {
    throw std::runtime_error(options.name + " does not play on " + sink + "\n" + session.logs());
  }
  return player;
}

bool TapRig::hears(SinkRecorder& recorder, float value, double seconds) {
  return eventually(seconds, [&] {
    const auto heard = recorder.next(1);
    return heard[0].back() == value;
  });
}

}  // namespace plemora::rig
