import QtQuick

/// One output device; the whole row chooses it.
HoverRow {
    id: root

    required property string name
    required property string symbol
    required property bool isSelected

    label: name
    Accessible.role: Accessible.RadioButton
    Accessible.checkable: true
    Accessible.checked: isSelected

    GlyphCircle {
        x: Metrics.glyphMargin
        anchors.verticalCenter: parent.verticalCenter
        symbol: root.symbol
        isSelected: root.isSelected
    }

    Label {
        x: Metrics.textColumn
        width: parent.width - x - Metrics.margin
        height: parent.height
        text: root.name
    }
}
