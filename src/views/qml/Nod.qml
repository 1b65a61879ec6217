import QtQuick
import Plemora

/// A gentle move to where the helper points and back, again and again: 0 while at rest.
QtObject {
    id: root

    required property HelperBinding page
    property bool isRunning: true
    property real part: 0
    readonly property real reach: 6  // points
    readonly property real x: page.pointsLeft ? -reach * part : page.pointsRight ? reach * part : 0
    readonly property real y: page.pointsUp ? -reach * part : 0

    readonly property SequentialAnimation motion: SequentialAnimation {
        running: root.isRunning && root.page.animates && (root.page.pointsUp || root.page.pointsLeft || root.page.pointsRight)
        loops: Animation.Infinite
        onStopped: root.part = 0

        NumberAnimation {
            target: root
            property: "part"
            from: 0
            to: 1
            duration: 550
            easing.type: Easing.OutCubic
        }
        NumberAnimation {
            target: root
            property: "part"
            to: 0
            duration: 650
            easing.type: Easing.InOutCubic
        }
        PauseAnimation {
            duration: 900
        }
    }
}
