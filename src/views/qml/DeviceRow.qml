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
        id: glyph

        x: Metrics.glyphMargin
        anchors.verticalCenter: parent.verticalCenter
        symbol: root.symbol
        isSelected: root.isSelected
    }

    Label {
        anchors.left: glyph.right
        anchors.leftMargin: Metrics.gap
        anchors.right: parent.right
        anchors.rightMargin: Metrics.margin
        height: parent.height
        text: root.name
    }
}
