import QtQuick
import Plemora

/// One app: its icon mutes it, then its name, its slider and the button of its outputs.
Item {
    id: root

    required property RowBinding row
    required property PanelBinding panel
    readonly property var controlRows: [[icon, slider, output]]
    readonly property bool compact: row.isCompact

    AppIconButton {
        id: icon

        x: Metrics.glyphMargin - 1
        anchors.verticalCenter: parent.verticalCenter
        side: root.compact ? 28 : 32
        source: root.row.icon
        name: root.row.title
        help: root.row.muteHelp
        isMuted: root.row.isMuted
        iconOpacity: root.row.iconOpacity
        saturation: root.row.iconSaturation
        showsFocus: root.panel.showsFocus
        onAction: root.panel.toggleMute(root.row.rowId)
    }

    Label {
        id: name

        x: root.compact ? Metrics.textColumn : icon.x + icon.width + Metrics.gap
        y: root.compact ? 0 : 5
        width: root.compact ? 86 : output.x - x - Metrics.gap
        height: root.compact ? root.height : 18
        text: root.row.title
        secondary: root.row.isMuted
    }

    ControlSlider {
        id: slider

        x: root.compact ? name.x + name.width + Metrics.gap : name.x
        y: root.compact ? Math.round((root.height - height) / 2) : 22
        width: output.x - x - Metrics.gap
        height: implicitHeight
        knob: root.row.knob
        trackHeight: root.row.trackHeight
        trackColor: root.panel.trackColor
        label: root.row.sliderLabel
        boundValue: root.row.volume
        isEnabled: root.row.isEnabled
        isDimmed: root.row.isDimmed
        level: root.row.level
        showsFocus: root.panel.showsFocus
        onMoved: value => root.panel.setVolume(root.row.rowId, value)
        onEditingChanged: isEditing => root.panel.setEditing(root.row.rowId, isEditing)
        onMuteToggled: root.panel.toggleMute(root.row.rowId)
    }

    OutputGlyphButton {
        id: output

        x: root.width - width - Metrics.margin
        anchors.verticalCenter: parent.verticalCenter
        symbol: root.row.symbol
        isOpen: root.row.isOpen
        help: root.row.outputHelp
        showsFocus: root.panel.showsFocus
        onAction: root.panel.toggleExpanded(root.row.rowId)
    }
}
