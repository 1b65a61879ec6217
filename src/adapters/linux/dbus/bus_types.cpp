#include "adapters/linux/dbus/bus_types.h"

#include <QDBusMetaType>

namespace plemora {

namespace {

QString text(const std::string& value) {
  return QString::fromStdString(value);
}

// Takes members out of a row into a record.
class RowReader {
 public:
  explicit RowReader(const QVariantMap& row) : row_(row) {}

  void read(const char* key, std::string& value) const {
    if (const QVariant member = row_.value(key); member.metaType().id() == QMetaType::QString) {
      value = member.toString().toStdString();
    }
  }
  void read(const char* key, bool& value) const {
    if (const QVariant member = row_.value(key); member.metaType().id() == QMetaType::Bool) {
      value = member.toBool();
    }
  }
  void read(const char* key, double& value) const {
    if (const QVariant member = row_.value(key); member.metaType().id() == QMetaType::Double) {
      value = member.toDouble();
    }
  }

 private:
  const QVariantMap& row_;
};

// Rows that come from the bus are still marshalled inside their variant; those of this process
// are not.
BusRows rows(const QVariant& value) {
  if (value.metaType() == QMetaType::fromType<QDBusArgument>()) {
    return qdbus_cast<BusRows>(value);
  }
  return value.value<BusRows>();
}

template <typename Record, typename Convert>
auto converted(const std::vector<Record>& records, Convert convert) {
  QList<decltype(convert(records.front()))> result;
  for (const Record& record : records) {
    result.append(convert(record));
  }
  return result;
}

template <typename Record>
std::vector<Record> recordsFromBus(const QVariant& value, void (*read)(const RowReader&, Record&)) {
  std::vector<Record> records;
  for (const QVariantMap& row : rows(value)) {
    read(RowReader(row), records.emplace_back());
  }
  return records;
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const BusLevel& level) {
  argument.beginStructure();
  argument << level.id << level.gain << level.inputPeak << level.outputPeak;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusLevel& level) {
  argument.beginStructure();
  argument >> level.id >> level.gain >> level.inputPeak >> level.outputPeak;
  argument.endStructure();
  return argument;
}

void registerBusTypes() {
  qDBusRegisterMetaType<BusLevel>();
  qDBusRegisterMetaType<BusLevels>();
  qDBusRegisterMetaType<BusRows>();
}

BusRows toBus(const std::vector<AppState>& apps) {
  return converted(apps, [](const AppState& app) {
    return QVariantMap{{"id", text(app.id)},         {"name", text(app.name)},
                       {"icon", text(app.icon)},     {"playing", app.playing},
                       {"volume", app.volume},       {"muted", app.muted},
                       {"output", text(app.output)}, {"outputSymbol", text(app.outputSymbol)},
                       {"routed", app.routed}};
  });
}

BusRows toBus(const std::vector<DeviceState>& devices) {
  return converted(devices, [](const DeviceState& device) {
    return QVariantMap{{"uid", text(device.uid)},
                       {"name", text(device.name)},
                       {"symbol", text(device.symbol)},
                       {"transport", text(device.transport)},
                       {"default", device.isDefault}};
  });
}

BusRows toBus(const std::vector<FactorReport>& factors) {
  return converted(factors, [](const FactorReport& factor) {
    return QVariantMap{
        {"name", text(factor.name)}, {"value", factor.value}, {"text", text(factor.text)}};
  });
}

BusLevels toBus(const std::vector<LevelReport>& levels) {
  return converted(levels, [](const LevelReport& level) {
    return BusLevel{text(level.id), level.gain, level.inputPeak, level.outputPeak};
  });
}

std::vector<AppState> appsFromBus(const QVariant& value) {
  return recordsFromBus<AppState>(value, [](const RowReader& row, AppState& app) {
    row.read("id", app.id);
    row.read("name", app.name);
    row.read("icon", app.icon);
    row.read("playing", app.playing);
    row.read("volume", app.volume);
    row.read("muted", app.muted);
    row.read("output", app.output);
    row.read("outputSymbol", app.outputSymbol);
    row.read("routed", app.routed);
  });
}

std::vector<DeviceState> devicesFromBus(const QVariant& value) {
  return recordsFromBus<DeviceState>(value, [](const RowReader& row, DeviceState& device) {
    row.read("uid", device.uid);
    row.read("name", device.name);
    row.read("symbol", device.symbol);
    row.read("transport", device.transport);
    row.read("default", device.isDefault);
  });
}

std::vector<FactorReport> factorsFromBus(const QVariant& value) {
  return recordsFromBus<FactorReport>(value, [](const RowReader& row, FactorReport& factor) {
    row.read("name", factor.name);
    row.read("value", factor.value);
    row.read("text", factor.text);
  });
}

std::vector<LevelReport> levelsFromBus(const QVariant& value) {
  std::vector<LevelReport> levels;
  for (const BusLevel& level : qdbus_cast<BusLevels>(value)) {
    levels.push_back({level.id.toStdString(), level.gain, level.inputPeak, level.outputPeak});
  }
  return levels;
}

QVariantMap propertiesToBus(const MixerState& state) {
  return {{"Channels", QVariant::fromValue(toBus(state.apps))},
          {"Devices", QVariant::fromValue(toBus(state.devices))},
          {"DefaultDevice", text(state.defaultDevice)},
          {"HasVolume", state.volume.has_value()},
          {"Volume", state.volume.value_or(0)},
          {"Muted", state.muted},
          {"Permission", text(state.permission)},
          {"Connected", state.connected},
          {"Demo", state.demo},
          {"Version", text(state.version)}};
}

void propertiesFromBus(const QVariantMap& properties, MixerState& state) {
  if (properties.contains("Channels")) {
    state.apps = appsFromBus(properties.value("Channels"));
  }
  if (properties.contains("Devices")) {
    state.devices = devicesFromBus(properties.value("Devices"));
  }
  const RowReader reader(properties);
  bool hasVolume = state.volume.has_value();
  double volume = state.volume.value_or(0);
  reader.read("HasVolume", hasVolume);
  reader.read("Volume", volume);
  state.volume = hasVolume ? std::optional(volume) : std::nullopt;
  reader.read("DefaultDevice", state.defaultDevice);
  reader.read("Muted", state.muted);
  reader.read("Permission", state.permission);
  reader.read("Connected", state.connected);
  reader.read("Demo", state.demo);
  reader.read("Version", state.version);
}

}  // namespace plemora
