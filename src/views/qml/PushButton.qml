import QtQuick
import Plemora

/// A button with a title: prominent, plain, or quiet as a link is.
FocusScope {
    id: root

    required property string title
    required property SetupTints tints
    /// What assistive technology calls it.
    property string label: title
    property string symbol
    property bool isPrimary: false
    property bool isQuiet: false
    property int quietSize: 12  // of the font
    property bool isEnabled: true
    property bool showsFocus: false
    property real minimumWidth: isQuiet ? 0 : 76
    readonly property color ink: isPrimary ? "white" : isQuiet ? tints.accentText : tints.text
    readonly property bool isPressed: pointer.pressed && pointer.containsMouse

    signal action

    function act() {
        if (isEnabled)
            action();
    }

    implicitWidth: Math.max(minimumWidth, Math.ceil(caption.implicitWidth) + (glyph.visible ? glyph.width + 5 : 0) + (isQuiet ? 0 : 32))
    implicitHeight: isQuiet ? 20 : 30
    activeFocusOnTab: isEnabled
    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.focusable: isEnabled
    Accessible.onPressAction: root.act()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            root.act();
            event.accepted = true;
        }
    }

    Plate {
        anchors.fill: parent
        visible: !root.isQuiet
        radius: height / 2
        color: root.isPrimary ? (root.isPressed ? "#0f52bb" : hover.hovered ? "#2a7af5" : root.tints.accent) : root.isPressed ? root.tints.controlPressed : hover.hovered ? root.tints.controlHover : root.tints.control
        opacity: root.isEnabled ? 1 : 0.5
    }

    FocusRing {
        shown: root.activeFocus && root.showsFocus
        anchors.margins: root.isQuiet ? -4 : -3
        radius: root.isQuiet ? 6 : height / 2
        border.color: root.tints.focus
    }

    Symbol {
        id: glyph

        x: Math.round((root.width - width - 5 - caption.implicitWidth) / 2)
        anchors.verticalCenter: parent.verticalCenter
        // Not before there is a window, whose scale the picture is made for.
        name: Window.window === null ? "" : root.symbol
        visible: root.symbol !== ""
        pointSize: 11
        color: root.ink
    }

    Text {
        id: caption

        x: glyph.visible ? glyph.x + glyph.width + 5 : Math.round((root.width - implicitWidth) / 2)
        anchors.verticalCenter: parent.verticalCenter
        text: root.title
        color: root.ink
        opacity: root.isEnabled ? 1 : 0.5
        textFormat: Text.PlainText
        font.family: Metrics.family
        font.pixelSize: root.isQuiet ? root.quietSize : 13
        font.weight: Font.Medium
        font.underline: root.isQuiet && root.isEnabled && (root.tints.isGlass || hover.hovered)
        Accessible.ignored: true
    }

    HoverHandler {
        id: hover

        cursorShape: root.isQuiet && root.isEnabled ? Qt.PointingHandCursor : Qt.ArrowCursor
    }

    MouseArea {
        id: pointer

        anchors.fill: parent
        anchors.margins: root.isQuiet ? -3 : 0
        onClicked: root.act()
    }
}
