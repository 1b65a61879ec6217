import QtQuick
import Plemora

/// A figure that moves around and around while it may; still it shows the beginning.
Figure {
    id: root

    property bool moves: false
    property int duration: 4000

    NumberAnimation on phase {
        running: root.moves && root.visible
        from: 0
        to: 1
        duration: root.duration
        loops: Animation.Infinite
        onStopped: root.phase = 0
    }
}
