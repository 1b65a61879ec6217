import QtQuick

/// Opens the list of AirPlay receivers.
TitledRow {
    id: root

    /// Counts the clicks; the route picker opens when it changes.
    property int trigger: 0

    symbol: "airplay.audio"
    onAction: trigger += 1
}
