import QtQuick
import Plemora

/// The volume of the default output device.
PanelSliderRow {
    id: root

    required property RowBinding row
    required property PanelBinding panel
    readonly property var controlRows: [[control]]

    leading: Symbol {
        anchors.centerIn: parent
        name: root.row.symbol
        pointSize: root.row.symbolSize
        opacity: root.row.isEnabled ? 1 : 0.45
    }
    slider: ControlSlider {
        id: control

        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        height: implicitHeight
        boundValue: root.row.volume
        label: root.row.sliderLabel
        knob: root.row.knob
        trackHeight: root.row.trackHeight
        trackColor: root.panel.trackColor
        isEnabled: root.row.isEnabled
        isDimmed: root.row.isDimmed
        showsFocus: root.panel.showsFocus
        onMoved: value => root.panel.setMasterVolume(value)
        onEditingChanged: isEditing => root.panel.setMasterEditing(isEditing)
        onMuteToggled: root.panel.toggleMasterMute()
    }
    trailing: LoudGlyph {
        anchors.verticalCenter: parent.verticalCenter
        opacity: root.row.isEnabled ? 1 : 0.45
    }
}
