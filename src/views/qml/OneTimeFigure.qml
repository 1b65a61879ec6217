import QtQuick
import Plemora

/// A figure that comes about once when it is first seen, where things may move.
Figure {
    id: root

    property bool shown: false
    property bool moves: false
    property int duration: 1000

    phase: 1
    onShownChanged: {
        if (shown && moves)
            appearing.restart();
        else
            appearing.complete();
    }
    onMovesChanged: {
        if (!moves)
            appearing.complete();
    }

    NumberAnimation {
        id: appearing

        target: root
        property: "phase"
        from: 0
        to: 1
        duration: root.duration
    }
}
