import QtQuick

/// Opens an app's list of outputs; shows the symbol of the one that the app is heard on.
FocusScope {
    id: root

    required property string symbol
    required property bool isOpen
    property string help
    property bool showsFocus: false

    signal action

    width: Metrics.glyph
    height: Metrics.glyph
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: help
    Accessible.description: isOpen ? qsTr("Open") : ""
    Accessible.focusable: true
    Accessible.onPressAction: root.action()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            root.action();
            event.accepted = true;
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: root.isOpen ? Metrics.glyphOpen : pointer.pressed ? Metrics.glyphPressed : hover.hovered ? Metrics.glyphHover : Metrics.glyphFill

        FocusRing {
            shown: root.activeFocus && root.showsFocus
            radius: height / 2
        }
    }

    Symbol {
        anchors.centerIn: parent
        name: root.symbol
        pointSize: 12
        color: root.isOpen ? Metrics.glyphOpenSymbol : Metrics.text
    }

    HoverHandler {
        id: hover
    }

    MouseArea {
        id: pointer

        anchors.fill: parent
        onClicked: root.action()
    }
}
