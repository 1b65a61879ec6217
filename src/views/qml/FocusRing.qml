import QtQuick

/// Shows where keys go, for those who use them.
Rectangle {
    property bool shown: false

    anchors.fill: parent
    anchors.margins: -2
    visible: shown
    color: "transparent"
    border.width: 2
    border.color: "#6cb4ff"
}
