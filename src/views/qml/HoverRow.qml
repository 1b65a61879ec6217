import QtQuick

/// A row that is one button and lights up under the pointer.
FocusScope {
    id: root

    default property alias content: holder.data
    property string label
    property string description
    property bool showsFocus: false
    readonly property var controlRows: [[root]]

    signal action

    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.description: description
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
        anchors.leftMargin: Metrics.highlightInset
        anchors.rightMargin: Metrics.highlightInset
        radius: Metrics.highlightRadius
        color: pointer.pressed && pointer.containsMouse ? Metrics.pressedHighlight : Metrics.highlight
        visible: hover.hovered || pointer.pressed
    }

    FocusRing {
        anchors.margins: 0
        anchors.leftMargin: Metrics.highlightInset
        anchors.rightMargin: Metrics.highlightInset
        radius: Metrics.highlightRadius
        shown: root.activeFocus && root.showsFocus
    }

    HoverHandler {
        id: hover
    }

    MouseArea {
        id: pointer

        anchors.fill: parent
        onClicked: root.action()
    }

    Item {
        id: holder

        anchors.fill: parent
    }
}
