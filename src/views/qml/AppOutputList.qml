import QtQuick
import Plemora

/// The choice of an app's output, one row for each device.
Item {
    id: root

    required property RowBinding row
    required property bool showsFocus
    readonly property var controlRows: Array.from(rows.children).filter(child => child instanceof DeviceRow).map(child => [child])

    signal choose(string uid)

    Accessible.role: Accessible.Grouping
    Accessible.name: row.title

    Rectangle {
        anchors.fill: parent
        anchors.leftMargin: Metrics.highlightInset
        anchors.rightMargin: Metrics.highlightInset
        anchors.bottomMargin: 4
        radius: Metrics.highlightRadius
        color: Metrics.group
    }

    Column {
        id: rows

        width: root.width

        Repeater {
            model: root.row.devices

            DeviceRow {
                required property string uid
                required property real rowHeight

                width: rows.width
                height: rowHeight
                showsFocus: root.showsFocus
                onAction: root.choose(uid)
            }
        }
    }
}
