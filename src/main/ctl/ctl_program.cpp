#include "main/ctl/ctl_program.h"

#include <unistd.h>

#include <cstdio>

#include "main/ctl/name_match.h"

namespace plemora {

namespace {

void print(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

QString text(const std::string& value) {
  return QString::fromStdString(value);
}

template <typename Record, typename Describe>
const Record* findNamed(const std::string& typed, const std::vector<Record>& records,
                        const char* what, Describe describe) {
  std::vector<Named> names;
  for (const Record& record : records) {
    names.push_back(describe(record));
  }
  std::string problem;
  const auto index = matchName(typed, names, what, problem);
  if (!index) {
    printError(problem);
    return nullptr;
  }
  return &records[*index];
}

}  // namespace

void printError(const std::string& message) {
  std::fflush(stdout);
  std::fputs(("plemoractl: " + message + "\n").c_str(), stderr);
}

CtlExit CtlProgram::run(const CtlArguments& arguments) {
  state_ = client_.state();
  if (!state_.connected && !state_.demo) {
    printError(
        "plemora runs, but there is no sound server to control; start PipeWire (on most "
        "systems: systemctl --user start pipewire wireplumber)");
    return CtlExit::noSoundServer;
  }
  switch (arguments.verb) {
    case CtlVerb::list:
      return list(arguments);
    case CtlVerb::devices:
      return devices(arguments);
    case CtlVerb::master:
      return master(arguments);
    case CtlVerb::defaultOutput:
      return setDefaultDevice(arguments.device);
    case CtlVerb::status:
      return status(arguments.app);
    case CtlVerb::watch: {
      const char* terminal = std::getenv("TERM");
      const bool isDumb = terminal == nullptr || std::string(terminal) == "dumb";
      return watchMixer(client_, style_, isatty(STDOUT_FILENO) == 1 && !isDumb);
    }
    default:
      return changeApp(arguments);
  }
}

CtlExit CtlProgram::list(const CtlArguments& arguments) const {
  if (arguments.ids) {
    for (const AppState& app : state_.apps) {
      print(printable(app.id) + "\n");
    }
  } else {
    print(arguments.json ? appsJson(state_) : appsText(state_, style_));
  }
  return CtlExit::success;
}

CtlExit CtlProgram::devices(const CtlArguments& arguments) const {
  if (arguments.ids) {
    for (const DeviceState& device : state_.devices) {
      print(printable(device.uid) + "\n");
    }
  } else {
    print(arguments.json ? devicesJson(state_) : devicesText(state_, style_));
  }
  return CtlExit::success;
}

CtlExit CtlProgram::changeApp(const CtlArguments& arguments) {
  const AppState* app = findApp(arguments.app);
  if (app == nullptr) {
    return CtlExit::usage;
  }
  const QString id = text(app->id);
  switch (arguments.verb) {
    case CtlVerb::volume:
      client_.call("SetAppVolume", {id, arguments.volume->appliedTo(app->volume)});
      return CtlExit::success;
    case CtlVerb::toggle:
      client_.call("ToggleAppMute", {id});
      return CtlExit::success;
    case CtlVerb::output:
      return setOutput(*app, arguments.device);
    default:
      client_.call("SetAppMute", {id, arguments.verb == CtlVerb::mute});
      return CtlExit::success;
  }
}

CtlExit CtlProgram::setOutput(const AppState& app, const std::string& device) {
  QString uid;
  if (!device.empty()) {
    const DeviceState* found = findDevice(device);
    if (found == nullptr) {
      return CtlExit::usage;
    }
    uid = text(found->uid);
  }
  client_.call("SetAppOutput", {text(app.id), uid});
  return CtlExit::success;
}

CtlExit CtlProgram::master(const CtlArguments& arguments) {
  if (arguments.muted) {
    client_.call("SetMuted", {*arguments.muted});
  } else if (arguments.volume) {
    client_.call("SetVolume", {arguments.volume->appliedTo(state_.volume.value_or(0))});
  } else {
    print(masterText(state_));
  }
  return CtlExit::success;
}

CtlExit CtlProgram::setDefaultDevice(const std::string& device) {
  const DeviceState* found = findDevice(device);
  if (found == nullptr) {
    return CtlExit::usage;
  }
  client_.call("SetDefaultDevice", {text(found->uid)});
  return CtlExit::success;
}

CtlExit CtlProgram::status(const std::string& app) {
  if (!app.empty()) {
    const AppState* found = findApp(app);
    if (found == nullptr) {
      return CtlExit::usage;
    }
    print(audibilityText(*found, client_.explain(found->id), style_));
    return CtlExit::success;
  }
  if (state_.apps.empty()) {
    print("No app plays, nor did one lately.\n");
  }
  for (std::size_t i = 0; i < state_.apps.size(); ++i) {
    print(i == 0 ? "" : "\n");
    print(audibilityText(state_.apps[i], client_.explain(state_.apps[i].id), style_));
  }
  return CtlExit::success;
}

const AppState* CtlProgram::findApp(const std::string& typed) const {
  return findNamed(typed, state_.apps, "app", [](const AppState& app) {
    return Named{app.id, app.name};
  });
}

const DeviceState* CtlProgram::findDevice(const std::string& typed) const {
  return findNamed(typed, state_.devices, "device", [](const DeviceState& device) {
    return Named{device.uid, device.name};
  });
}

}  // namespace plemora
