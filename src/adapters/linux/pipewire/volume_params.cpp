#include "adapters/linux/pipewire/volume_params.h"

#include <spa/param/audio/raw.h>
#include <spa/param/param.h>
#include <spa/param/props.h>
#include <spa/param/route.h>
#include <spa/pod/builder.h>
#include <spa/pod/iter.h>

#include <cstring>
#include <string>

namespace plemora {

namespace {

// Room for 64 channels and then some.
constexpr std::size_t podWords = 256;

void addVolume(spa_pod_builder& builder, std::uint32_t id, const VolumeState& volume) {
  spa_pod_frame frame;
  spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_Props, id);
  spa_pod_builder_prop(&builder, SPA_PROP_mute, 0);
  spa_pod_builder_bool(&builder, volume.muted);
  if (!volume.channelVolumes.empty()) {
    spa_pod_builder_prop(&builder, SPA_PROP_channelVolumes, 0);
    spa_pod_builder_array(&builder, sizeof(float), SPA_TYPE_Float,
                          static_cast<std::uint32_t>(volume.channelVolumes.size()),
                          volume.channelVolumes.data());
  }
  spa_pod_builder_pop(&builder, &frame);
}

std::string stringOf(const spa_pod& pod) {
  const char* text = nullptr;
  return spa_pod_get_string(&pod, &text) == 0 && text != nullptr ? text : "";
}

// The info of a route is a struct: a count, then keys and values in turn.
std::string portTypeOf(const spa_pod& info) {
  if (!spa_pod_is_struct(&info)) {
    return "";
  }
  std::string key;
  bool isKey = true;
  void* item = nullptr;
  bool isCount = true;
  SPA_POD_STRUCT_FOREACH(&info, item) {
    const auto& pod = *static_cast<const spa_pod*>(item);
    if (isCount) {
      isCount = false;
    } else if (isKey) {
      key = stringOf(pod);
      isKey = false;
    } else {
      if (key == "port.type") {
        return stringOf(pod);
      }
      isKey = true;
    }
  }
  return "";
}

}  // namespace

std::optional<VolumeState> parseVolume(const spa_pod* props) {
  if (props == nullptr || !spa_pod_is_object_type(props, SPA_TYPE_OBJECT_Props)) {
    return std::nullopt;
  }
  VolumeState state;
  const auto* object = reinterpret_cast<const spa_pod_object*>(props);
  const spa_pod_prop* prop = nullptr;
  SPA_POD_OBJECT_FOREACH(object, prop) {
    if (prop->key == SPA_PROP_mute) {
      spa_pod_get_bool(&prop->value, &state.muted);
    } else if (prop->key == SPA_PROP_channelVolumes) {
      float volumes[SPA_AUDIO_MAX_CHANNELS];
      const std::uint32_t count =
          spa_pod_copy_array(&prop->value, SPA_TYPE_Float, volumes, SPA_AUDIO_MAX_CHANNELS);
      state.channelVolumes.assign(volumes, volumes + count);
    }
  }
  if (state.channelVolumes.empty()) {
    return std::nullopt;
  }
  return state;
}

std::optional<RouteRecord> parseRoute(const spa_pod* route) {
  if (route == nullptr || !spa_pod_is_object_type(route, SPA_TYPE_OBJECT_ParamRoute)) {
    return std::nullopt;
  }
  RouteRecord record;
  std::uint32_t direction = SPA_DIRECTION_INPUT;
  const auto* object = reinterpret_cast<const spa_pod_object*>(route);
  const spa_pod_prop* prop = nullptr;
  SPA_POD_OBJECT_FOREACH(object, prop) {
    switch (prop->key) {
      case SPA_PARAM_ROUTE_index:
        spa_pod_get_int(&prop->value, &record.index);
        break;
      case SPA_PARAM_ROUTE_device:
        spa_pod_get_int(&prop->value, &record.device);
        break;
      case SPA_PARAM_ROUTE_direction:
        spa_pod_get_id(&prop->value, &direction);
        break;
      case SPA_PARAM_ROUTE_name:
        record.name = stringOf(prop->value);
        break;
      case SPA_PARAM_ROUTE_info:
        record.portType = portTypeOf(prop->value);
        break;
      case SPA_PARAM_ROUTE_props:
        record.volume = parseVolume(&prop->value).value_or(VolumeState{});
        break;
      default:
        break;
    }
  }
  if (direction != SPA_DIRECTION_OUTPUT || record.index < 0) {
    return std::nullopt;
  }
  return record;
}

std::vector<std::uint64_t> buildVolume(const VolumeState& volume) {
  std::vector<std::uint64_t> words(podWords);
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, words.data(),
                       static_cast<std::uint32_t>(words.size() * sizeof(words[0])));
  addVolume(builder, SPA_PARAM_Props, volume);
  return words;
}

std::vector<std::uint64_t> buildRouteVolume(const RouteRecord& route, const VolumeState& volume) {
  std::vector<std::uint64_t> words(podWords);
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, words.data(),
                       static_cast<std::uint32_t>(words.size() * sizeof(words[0])));
  spa_pod_frame frame;
  spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_ParamRoute, SPA_PARAM_Route);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_index, 0);
  spa_pod_builder_int(&builder, route.index);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_device, 0);
  spa_pod_builder_int(&builder, route.device);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_props, 0);
  addVolume(builder, SPA_PARAM_Route, volume);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_save, 0);
  spa_pod_builder_bool(&builder, true);
  spa_pod_builder_pop(&builder, &frame);
  return words;
}

}  // namespace plemora
