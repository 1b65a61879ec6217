import QtQuick

/// The title of a group of rows.
Item {
    id: root

    required property string title

    Accessible.role: Accessible.Heading
    Accessible.name: title

    Label {
        anchors.fill: parent
        anchors.leftMargin: Metrics.margin
        anchors.rightMargin: Metrics.margin
        anchors.topMargin: 4
        text: root.title
        secondary: true
        font.pixelSize: Metrics.smallSize
        font.weight: Font.DemiBold
    }
}
