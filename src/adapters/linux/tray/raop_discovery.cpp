#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QProcess>
#include <QStandardPaths>

#include "adapters/linux/tray/raop_route_picker.h"
#include "base/log.h"

namespace plemora {

namespace {

constexpr Logger logger("airplay");

constexpr char helper[] = "pw-cli";
constexpr int endPatience = 1000;  // milliseconds

/// The helper with the module in it. The sinks that it makes go with it.
class RaopSearch {
 public:
  RaopSearch() {
    process_.setProcessChannelMode(QProcess::MergedChannels);
    // It ends with this program, whatever ends that.
    process_.setChildProcessModifier([parent = getpid()] {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      if (getppid() != parent) {
        _exit(0);
      }
    });
    QObject::connect(&process_, &QProcess::readyRead, [this] { report(process_.readAll()); });
    process_.start(helper, QStringList());
    process_.write("load-module libpipewire-module-raop-discover\n");
  }

  ~RaopSearch() {
    process_.disconnect();
    process_.closeWriteChannel();
    process_.terminate();
    if (!process_.waitForFinished(endPatience)) {
      process_.kill();
      process_.waitForFinished(endPatience);
    }
  }
  RaopSearch(const RaopSearch&) = delete;
  RaopSearch& operator=(const RaopSearch&) = delete;

 private:
  static void report(const QByteArray& output) {
    for (const QByteArray& line : output.split('\n')) {
      if (line.contains("Could not load")) {
        logger.warning("the module that finds AirPlay receivers is missing or fails: " +
                       line.trimmed().toStdString());
      }
    }
  }

  QProcess process_;
};

}  // namespace

RaopRoutePicker::Discovery makeRaopDiscovery() {
  return []() -> std::shared_ptr<void> {
    if (QStandardPaths::findExecutable(helper).isEmpty()) {
      logger.warning("pw-cli (of pipewire-bin) is not installed");
      return nullptr;
    }
    return std::make_shared<RaopSearch>();
  };
}

}  // namespace plemora
