import QtQuick

/// Shows which part of a list is seen, while it is moved or pointed at.
Rectangle {
    id: root

    required property ListView list
    // Clear of the panel's round corners.
    readonly property real inset: 14
    readonly property real room: list.height - 2 * inset
    readonly property real part: list.visibleArea.heightRatio

    anchors.right: parent.right
    anchors.rightMargin: 3
    y: inset + list.visibleArea.yPosition * room
    width: 3
    height: Math.max(part * room, 24)
    radius: 1.5
    color: Metrics.scrollMark
    visible: part < 1
}
