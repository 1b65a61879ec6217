import QtQuick
import Plemora

/// Says what the icon above it is, and opens it.
FocusScope {
    id: root

    required property CalloutBinding page

    implicitWidth: open.x + open.width + 14
    implicitHeight: Math.max(line.y + line.height, open.height) + 14
    focus: true
    Accessible.role: Accessible.Pane
    Accessible.name: page.title

    SetupTints {
        id: theme

        isDark: true
        isGlass: true
    }

    Plate {
        // White words are to be read over a white window too. Within the rim of the glass.
        anchors.fill: parent
        anchors.margins: 1
        radius: 13
        color: Qt.rgba(0.04, 0.04, 0.07, 0.32)
    }

    Paragraph {
        id: title

        x: 18
        y: 14
        width: Math.ceil(Math.min(implicitWidth, 300))
        text: root.page.title
        color: theme.text
        font.pixelSize: 14
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }

    Paragraph {
        id: line

        x: title.x
        y: title.y + title.height + 3
        width: Math.ceil(Math.min(implicitWidth, 300))
        text: root.page.line
        color: theme.secondary
        font.pixelSize: 12
    }

    PushButton {
        id: open

        x: title.x + Math.max(title.width, line.width) + 20
        y: Math.round((root.implicitHeight - height) / 2)
        width: implicitWidth
        height: implicitHeight
        title: root.page.buttonTitle
        symbol: root.page.buttonSymbol
        tints: theme
        showsFocus: root.page.showsFocus
        onAction: root.page.open()
    }
}
