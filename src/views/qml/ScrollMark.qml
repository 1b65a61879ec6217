import QtQuick

/// Shows which part of a list is seen, while it is moved or pointed at.
Rectangle {
    id: root

    required property ListView list
    readonly property real part: list.visibleArea.heightRatio

    anchors.right: parent.right
    anchors.rightMargin: 2
    y: 6 + list.visibleArea.yPosition * (list.height - 12)
    width: 4
    height: Math.max(part * (list.height - 12), 24)
    radius: 2
    color: Qt.rgba(1, 1, 1, 0.35)
    visible: part < 1
}
