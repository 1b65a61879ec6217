#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace plemora {

class AudioGraph;
class AudioProperties;
class Clock;
class ConsentService;
class MainQueue;
class SerialQueueFactory;
class SystemInfo;
class UserDefaults;
class Workspace;

/// The world as the audio engine needs it. All of it outlives the MixerModel; the queue factory
/// is used on the main thread.
struct MixerServices {
  AudioProperties& properties;
  AudioGraph& graph;
  MainQueue& mainQueue;
  SerialQueueFactory& queues;
  Clock& clock;
  Workspace& workspace;
  UserDefaults& defaults;
  ConsentService& consent;
  SystemInfo& system;
  std::vector<std::string> arguments;  ///< of the command line, without the program's name
  std::int32_t processID;              ///< this program's own, which is never listed nor tapped
};

}  // namespace plemora
