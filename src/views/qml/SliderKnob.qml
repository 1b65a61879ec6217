import QtQuick
import Plemora

/// The capsule that is dragged: a glass body with a soft shadow, a little darker while pressed.
Item {
    id: root

    required property size size
    property bool pressed: false

    width: size.width
    height: size.height

    Capsule {
        anchors.fill: parent
        anchors.margins: -shadow
        shadow: 4
        color: "white"
        bottomColor: root.pressed ? "#d6d9de" : "#eef0f2"
    }
}
