#include "audio/audio_permission.h"

#include <string>
#include <utility>

namespace plemora {

namespace {

const std::string serviceName = "kTCCServiceAudioCapture";

}  // namespace

AudioPermission::Status AudioPermission::status() {
  const auto answer = consent_.preflight(serviceName);
  if (answer == 0) {
    return Status::granted;
  }
  return answer == 1 ? Status::denied : Status::unknown;
}

void AudioPermission::request(std::function<void(bool granted)> completion) {
  // The reply comes on any thread. The main queue outlives this object and the reply.
  const auto reply = [&mainQueue = mainQueue_, completion = std::move(completion)](bool granted) {
    mainQueue.async([completion, granted] { completion(granted); });
  };
  if (!consent_.request(serviceName, reply)) {
    reply(false);
  }
}

std::string_view statusName(AudioPermission::Status status) {
  switch (status) {
    case AudioPermission::Status::granted:
      return "granted";
    case AudioPermission::Status::denied:
      return "denied";
    case AudioPermission::Status::unknown:
      break;
  }
  return "unknown";
}

}  // namespace plemora
