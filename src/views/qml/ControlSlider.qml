import QtQuick
import Plemora

/// A volume slider: a capsule track, filled up to the value, with a knob. Its rules are those of
/// its binding; this draws them and hands gestures on.
FocusScope {
    id: root

    /// The model's value; what the user does is told by moved().
    required property real boundValue
    property bool isEnabled: true
    property bool isDimmed: false
    required property size knob
    required property real trackHeight
    required property color trackColor
    /// What sounds now, 0...1; below 0: not known, and no meter is shown.
    property real level: -1
    property string label: slider.label
    property bool showsFocus: false

    // Assistive technology reads these by name, and writes the value.
    property real value: slider.value
    readonly property real minimumValue: 0
    readonly property real maximumValue: 1
    readonly property real stepSize: slider.step

    signal moved(real value)
    signal editingChanged(bool isEditing)
    signal muteToggled

    implicitHeight: Math.max(knob.height, trackHeight) + 8
    opacity: slider.opacity
    activeFocusOnTab: isEnabled

    Accessible.role: Accessible.Slider
    Accessible.name: label
    Accessible.description: slider.valueText
    Accessible.focusable: isEnabled
    Accessible.onIncreaseAction: slider.increment()
    Accessible.onDecreaseAction: slider.decrement()
    onValueChanged: {
        if (value !== slider.value) {
            slider.assign(value);
            value = Qt.binding(() => slider.value);
        }
    }
    Keys.onPressed: event => {
        if (event.key === Qt.Key_M && event.modifiers === Qt.NoModifier) {
            root.muteToggled();
            event.accepted = true;
        } else {
            event.accepted = slider.pressKey(event.key, event.modifiers);
        }
    }

    SliderBinding {
        id: slider

        boundValue: root.boundValue
        isEnabled: root.isEnabled
        isDimmed: root.isDimmed
        isDark: Metrics.isDark
        knob: root.knob
        width: root.width
        isPointedAt: hover.hovered
        onMoved: value => root.moved(value)
        onEditingChanged: isEditing => root.editingChanged(isEditing)
    }

    Capsule {
        id: track

        y: Math.round((root.height - height) / 2)
        width: root.width
        height: root.trackHeight
        color: root.trackColor
    }

    Capsule {
        // Up to the middle of the knob, under which the fill ends.
        y: track.y
        width: Math.max(slider.knobOffset + root.knob.width / 2, height)
        height: root.trackHeight
        color: slider.fillColor
        visible: slider.value > 0
    }

    Capsule {
        // What is heard shows inside the fill, never beyond the knob.
        x: 1.5
        y: track.y + 1.5
        width: Math.max(root.level, 0) * Math.max(slider.knobOffset - x, 0)
        height: root.trackHeight - 3
        color: Metrics.meter
        visible: width >= height
    }

    SliderKnob {
        x: slider.knobOffset
        y: Math.round((root.height - height) / 2)
        size: root.knob
        pressed: slider.isDragging

        FocusRing {
            shown: root.activeFocus && root.showsFocus
            radius: height / 2
        }
    }

    HoverHandler {
        id: hover
    }

    MouseArea {
        anchors.fill: parent
        preventStealing: true
        onPressed: mouse => slider.drag(mouse.x)
        onPositionChanged: mouse => slider.drag(mouse.x)
        onReleased: slider.endDrag()
        onCanceled: slider.endDrag()
        onWheel: wheel => {
            wheel.accepted = slider.turnWheel(wheel.angleDelta, wheel.modifiers);
        }
    }
}
