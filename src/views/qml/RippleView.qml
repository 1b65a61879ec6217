import QtQuick
import Plemora

/// Rings around the program's icon.
Item {
    id: root

    required property ViewBinding page

    implicitWidth: 64
    implicitHeight: 64

    MovingFigure {
        anchors.fill: parent
        name: root.page.animates ? "ripple" : "stillRipple"
        color: "#3d95ff"
        moves: root.page.animates
        duration: 2000
        Accessible.ignored: true
    }
}
