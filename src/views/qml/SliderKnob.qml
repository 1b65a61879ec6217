import QtQuick

/// The capsule that is dragged: a glass body with a soft shadow, a little clearer while pressed.
Item {
    id: root

    required property size size
    property bool pressed: false

    width: size.width
    height: size.height

    Repeater {
        // The software renderer has no blur: the shadow is a few capsules that fade outwards.
        model: 3

        Rectangle {
            required property int index

            x: -index - 0.5
            y: -index + 0.5
            width: root.width + 2 * index + 1
            height: root.height + 2 * index + 1
            radius: height / 2
            color: Qt.rgba(0, 0, 0, 0.09)
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        gradient: Gradient {
            GradientStop {
                position: 0
                color: "white"
            }
            GradientStop {
                position: 1
                color: root.pressed ? "#d8dade" : "#eceef0"
            }
        }
    }
}
