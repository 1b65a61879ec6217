import QtQuick
import Plemora

/// The volume of the module: a groove, filled up to the volume, with a knob on the fill's end.
Item {
    id: root

    required property ModuleBinding module

    Capsule {
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        height: root.module.track.height
        color: root.module.trackColor
    }

    Capsule {
        anchors.verticalCenter: parent.verticalCenter
        width: root.module.fillWidth
        height: root.module.track.height
        color: root.module.fillColor
        opacity: root.module.fillOpacity
    }

    Capsule {
        x: root.module.knobOffset - shadow
        y: (parent.height - height) / 2
        width: root.module.knob.width + 2 * shadow
        height: root.module.knob.height + 2 * shadow
        shadow: 3
        color: root.module.knobColor
    }
}
