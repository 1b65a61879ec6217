import QtQuick
import Plemora

/// The program's icon, to be dragged out of the window; it nods to where it is to go.
Item {
    id: root

    required property HelperBinding page
    required property SetupTints tints
    readonly property real reach: 4  // points after which a press becomes a drag

    implicitWidth: 64
    implicitHeight: 64
    Accessible.role: Accessible.Graphic
    Accessible.name: "Plemora"
    Accessible.description: qsTr("Its icon: drag it to the list in System Settings.")

    Plate {
        anchors.fill: parent
        radius: 15
        isDashed: true
        borderWidth: 1.5
        borderColor: Qt.rgba(1, 1, 1, root.page.isDragging ? 0.5 : 0.28)
        color: Qt.rgba(1, 1, 1, hover.hovered && !root.page.isDragging ? 0.1 : 0.04)
    }

    Image {
        id: icon

        x: 5 + nod.x
        y: 5 + nod.y
        width: 54
        height: 54
        visible: !root.page.isDragging
        sourceSize: Qt.size(54, 54)
        source: Window.window === null ? "" : "image://appicon/icon?source=:/plemora/program/com.quorvane.mixer.svg"
        Accessible.ignored: true
    }

    Nod {
        id: nod

        page: root.page
        isRunning: !hover.hovered && !root.page.isDragging
    }

    HoverHandler {
        id: hover

        cursorShape: pointer.pressed ? Qt.ClosedHandCursor : Qt.OpenHandCursor
    }

    MouseArea {
        id: pointer

        property point start
        property bool isHeld: false  // and not yet on its way

        anchors.fill: parent
        preventStealing: true
        cursorShape: pressed ? Qt.ClosedHandCursor : Qt.OpenHandCursor
        onPressed: mouse => {
            start = Qt.point(mouse.x, mouse.y);
            isHeld = true;
        }
        onPositionChanged: mouse => {
            if (isHeld && Math.hypot(mouse.x - start.x, mouse.y - start.y) >= root.reach) {
                isHeld = false;
                root.page.drag();
            }
        }
        onReleased: isHeld = false
        onCanceled: isHeld = false
    }
}
