#include "panel/session_manager.h"

#include <X11/ICE/ICElib.h>
#include <X11/ICE/ICEutil.h>
#include <X11/SM/SMlib.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/wait.h"

namespace plemora::rig {

namespace {

constexpr double patience = 5;  // seconds

}  // namespace

struct SessionManager::State {
  State() {
    IceSetIOErrorHandler([](IceConn) {});  // a client that ends is no reason to end
    char problem[256] = {};
    if (SmsInitialize("Plemora", "1", &State::accept, this, allow, sizeof problem, problem) == 0 ||
        IceListenForConnections(&listeners, &listening, sizeof problem, problem) == 0 ||
        pipe(wake.data()) != 0) {
      throw std::runtime_error(std::string("no session manager: ") + problem);
    }
    for (int i = 0; i < listeners; ++i) {
      IceSetHostBasedAuthProc(listening[i], allow);
    }
    thread = std::thread([this] { run(); });
  }
  ~State() {
    tell('q');
    thread.join();
    drop();
    IceFreeListenObjs(listeners, listening);
    close(wake[0]);
    close(wake[1]);
  }

  void tell(char what) const { [[maybe_unused]] const auto written = write(wake[1], &what, 1); }

  void run() {
    for (;;) {
      std::vector<pollfd> watched = {{wake[0], POLLIN, 0}};
      for (int i = 0; i < listeners; ++i) {
        watched.push_back({IceGetListenConnectionNumber(listening[i]), POLLIN, 0});
      }
      if (connection != nullptr) {
        watched.push_back({IceConnectionNumber(connection), POLLIN, 0});
      }
      poll(watched.data(), watched.size(), -1);
      if (connection != nullptr && watched.back().revents != 0 &&
          IceProcessMessages(connection, nullptr, nullptr) != IceProcessMessagesSuccess) {
        drop();
      }
      for (int i = 0; i < listeners; ++i) {
        if (watched[static_cast<std::size_t>(i) + 1].revents != 0) {
          IceAcceptStatus status;
          connection = IceAcceptConnection(listening[i], &status);
        }
      }
      char what = 0;
      if (watched[0].revents != 0 && read(wake[0], &what, 1) == 1) {
        if (what == 'q') {
          return;
        }
        isEnding = true;
        SmsSaveYourself(client, SmSaveBoth, True, SmInteractStyleNone, False);
      }
    }
  }

  void drop() {
    if (connection != nullptr) {
      IceSetShutdownNegotiation(connection, False);
      IceCloseConnection(connection);
    }
    connection = nullptr;
  }

  static Bool allow(char*) { return True; }

  static Status accept(SmsConn made, SmPointer self, unsigned long* mask, SmsCallbacks* calls,
                       char**) {
    static_cast<State*>(self)->client = made;
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask |
            SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask |
            SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
    *calls = {};
    calls->register_client = {[](SmsConn client, SmPointer, char* previous) -> Status {
                                std::free(previous);
                                char* id = SmsGenerateClientID(client);
                                SmsRegisterClientReply(client, id);
                                std::free(id);
                                SmsSaveYourself(client, SmSaveLocal, False, SmInteractStyleNone,
                                                False);
                                return 1;
                              },
                              self};
    calls->interact_request = {[](SmsConn, SmPointer, int) {}, self};
    calls->interact_done = {[](SmsConn, SmPointer, Bool) {}, self};
    calls->save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {}, self};
    calls->save_yourself_phase2_request = {
        [](SmsConn client, SmPointer) { SmsSaveYourselfPhase2(client); }, self};
    calls->save_yourself_done = {[](SmsConn client, SmPointer data, Bool) {
                                   auto* state = static_cast<State*>(data);
                                   if (state->isEnding) {
                                     SmsDie(client);
                                     state->hasToldToEnd = true;
                                   } else {
                                     SmsSaveComplete(client);
                                     state->hasClient = true;
                                   }
                                 },
                                 self};
    calls->close_connection = {[](SmsConn client, SmPointer data, int count, char** reasons) {
                                 SmFreeReasons(count, reasons);
                                 SmsCleanUp(client);
                                 static_cast<State*>(data)->drop();
                               },
                               self};
    calls->set_properties = {[](SmsConn, SmPointer data, int count, SmProp** properties) {
                               auto* state = static_cast<State*>(data);
                               for (int i = 0; i < count; ++i) {
                                 SmProp& one = *properties[i];
                                 if (std::strcmp(one.name, SmRestartStyleHint) == 0) {
                                   state->restartStyle = *static_cast<char*>(one.vals[0].value);
                                 }
                                 SmFreeProperty(&one);
                               }
                               std::free(properties);
                             },
                             self};
    calls->delete_properties = {[](SmsConn, SmPointer, int count, char** names) {
                                  for (int i = 0; i < count; ++i) {
                                    std::free(names[i]);
                                  }
                                  std::free(names);
                                },
                                self};
    calls->get_properties = {[](SmsConn, SmPointer) {}, self};
    return 1;
  }

  int listeners = 0;
  IceListenObj* listening = nullptr;
  std::array<int, 2> wake{};
  std::thread thread;

  // Of the thread.
  IceConn connection = nullptr;
  SmsConn client = nullptr;
  bool isEnding = false;

  std::atomic<bool> hasClient = false;
  std::atomic<bool> hasToldToEnd = false;
  std::atomic<int> restartStyle = SmRestartIfRunning;
};

SessionManager::SessionManager() : state_(std::make_unique<State>()) {}

SessionManager::~SessionManager() = default;

std::string SessionManager::variable() const {
  char* list = IceComposeNetworkIdList(state_->listeners, state_->listening);
  std::string variable = std::string("SESSION_MANAGER=") + list;
  std::free(list);
  return variable;
}

bool SessionManager::hasClient() {
  return eventually(patience, [this] { return state_->hasClient.load(); });
}

void SessionManager::logOut() {
  state_->tell('o');
}

bool SessionManager::hasToldToEnd() {
  return eventually(patience, [this] { return state_->hasToldToEnd.load(); });
}

bool SessionManager::isToBeRestarted() {
  return state_->restartStyle != SmRestartNever;
}

}  // namespace plemora::rig
