#pragma once

#include <QDBusArgument>
#include <QList>
#include <QString>
#include <QVariant>
#include <vector>

#include "adapters/linux/dbus/mixer_state.h"

namespace plemora {

/// A level report as it travels: (sddd).
struct BusLevel {
  QString id;
  double gain = 0;
  double inputPeak = 0;
  double outputPeak = 0;
};

/// Rows of named values: aa{sv}.
using BusRows = QList<QVariantMap>;
using BusLevels = QList<BusLevel>;  ///< a(sddd)

QDBusArgument& operator<<(QDBusArgument& argument, const BusLevel& level);
const QDBusArgument& operator>>(const QDBusArgument& argument, BusLevel& level);

/// Makes the types above known to the bus. Call it once before the first message; more do no harm.
void registerBusTypes();

BusRows toBus(const std::vector<AppState>& apps);
BusRows toBus(const std::vector<DeviceState>& devices);
BusRows toBus(const std::vector<FactorReport>& factors);
BusLevels toBus(const std::vector<LevelReport>& levels);

/// Back from the bus. A member that is missing or of another type keeps its default, so that a
/// client understands older and newer programs.
std::vector<AppState> appsFromBus(const QVariant& value);
std::vector<DeviceState> devicesFromBus(const QVariant& value);
std::vector<FactorReport> factorsFromBus(const QVariant& value);
std::vector<LevelReport> levelsFromBus(const QVariant& value);

/// The value of every property of the interface.
QVariantMap propertiesToBus(const MixerState& state);

/// Stores the given properties; those that are not among them stay.
void propertiesFromBus(const QVariantMap& properties, MixerState& state);

}  // namespace plemora

Q_DECLARE_METATYPE(plemora::BusLevel)
