import QtQuick

/// An app's icon; pressing it mutes the app.
FocusScope {
    id: root

    required property string source
    required property string name
    required property string help
    required property bool isMuted
    property real side: 28
    property real iconOpacity: 1
    property real saturation: 1
    property bool showsFocus: false

    signal action

    width: side
    height: side
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: help
    Accessible.checkable: true
    Accessible.checked: isMuted
    Accessible.focusable: true
    Accessible.onPressAction: root.action()
    Accessible.onToggleAction: root.action()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter || event.key === Qt.Key_M) {
            root.action();
            event.accepted = true;
        }
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: -2
        radius: 9
        color: pointer.pressed ? Metrics.pressedHighlight : Metrics.highlight
        visible: hover.hovered || pointer.pressed
    }

    Image {
        anchors.fill: parent
        opacity: root.iconOpacity
        sourceSize: Qt.size(root.side, root.side)
        source: "image://appicon/icon?source=" + encodeURIComponent(root.source) + "&name=" + encodeURIComponent(root.name.slice(0, 64)) + "&saturation=" + root.saturation
        Accessible.ignored: true
    }

    FocusRing {
        shown: root.activeFocus && root.showsFocus
        radius: 9
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
