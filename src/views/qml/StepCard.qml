import QtQuick
import Plemora

/// One step of setup: its drawing, what it is for, and how it stands. Its height does not depend on
/// how it stands, so that the others keep their places.
Item {
    id: root

    required property int index
    required property SetupBinding page
    required property SetupTints tints
    property var card: page.card(index)
    readonly property alias button: button
    readonly property bool holdsFocus: button.activeFocus || skip.activeFocus
    readonly property bool isRaised: card.isActive || card.isInSettings || card.isWorking
    readonly property string status: card.isDone ? qsTr("Done") : card.isInSettings ? qsTr("Waiting for you") : card.isWorking ? qsTr("In progress") : card.isActive ? qsTr("Ready") : qsTr("Not yet")
    readonly property string note: card.note
    readonly property bool isWaiting: card.isInSettings || card.isWorking
    readonly property real textTop: 21

    // Room for one line of note in any case, and what was once needed stays.
    property real noteRoom: 20
    readonly property real noteNeed: noteText.visible ? noteText.height : 0

    property real sideRoom: 108
    readonly property real sideNeed: Math.max(card.buttonTitle !== "" ? button.implicitWidth : 0, card.skipTitle !== "" ? skip.implicitWidth : 0)

    onNoteNeedChanged: noteRoom = Math.max(noteRoom, noteNeed)
    onSideNeedChanged: sideRoom = Math.max(sideRoom, sideNeed)

    implicitHeight: Math.max(100, textTop + title.height + 3 + line.height + 5 + noteRoom + 9)
    Accessible.role: Accessible.Grouping
    Accessible.name: card.title
    Accessible.description: [status, card.line, note !== status ? note : ""].filter(part => part !== "").join(". ")

    Connections {
        target: root.page

        function onPageChanged() {
            root.card = root.page.card(root.index);
        }
    }

    Plate {
        anchors.fill: parent
        anchors.margins: -shadow
        shadow: root.isRaised ? 10 : 0
        shadowStrength: root.tints.isDark ? 0 : 0.1
        radius: 16
        color: root.isRaised ? root.tints.raised : root.tints.card
        borderWidth: 1
        borderColor: root.isRaised ? root.tints.raisedBorder : root.tints.cardBorder
    }

    MovingFigure {
        id: drawing

        x: 16
        y: Math.round((root.height - height) / 2)
        width: 64
        height: 64
        name: root.card.id
        moves: root.page.animates && root.card.isActive
        opacity: root.card.isPending ? 0.45 : root.card.isDone ? 0.8 : 1
    }

    Paragraph {
        id: title

        x: 98
        y: root.textTop
        width: side.x - x - 16
        text: root.card.title
        color: root.card.isPending ? root.tints.secondary : root.tints.text
        font.pixelSize: 14
        font.weight: Font.DemiBold
        Accessible.ignored: true
    }

    Paragraph {
        id: line

        x: title.x
        y: title.y + title.height + 3
        width: title.width
        text: root.card.line
        color: root.card.isPending ? root.tints.faint : root.tints.secondary
        font.pixelSize: 12
        Accessible.ignored: true
    }

    Item {
        id: sign

        x: title.x
        y: noteText.y + 1
        width: visible ? 14 : 0
        height: 14
        visible: root.isWaiting && noteText.visible

        MovingFigure {
            anchors.fill: parent
            name: "spinner"
            color: root.tints.text
            moves: root.page.animates && sign.visible
            duration: 1000
        }
    }

    Paragraph {
        id: noteText

        x: title.x + (sign.visible ? sign.width + 6 : 0)
        y: line.y + line.height + 6
        width: title.width - (x - title.x)
        visible: text !== ""
        text: root.note
        color: root.isRaised ? root.tints.text : root.tints.secondary
        font.pixelSize: 12
        font.weight: Font.Medium
        Accessible.ignored: true
    }

    Item {
        id: side

        x: root.width - width - 18
        width: root.sideRoom
        height: root.height

        PushButton {
            id: button

            y: Math.round((side.height - height - (skip.visible ? skip.height + 7 : 0)) / 2)
            width: side.width
            height: implicitHeight
            // What cannot be begun yet has nothing to press.
            visible: root.card.buttonTitle !== "" && !root.card.isDone && (isEnabled || !root.card.isPending)
            title: root.card.buttonTitle
            label: root.card.buttonLabel
            tints: root.tints
            isPrimary: root.card.isActive && isEnabled
            isEnabled: root.card.isButtonEnabled
            showsFocus: root.page.showsFocus
            onAction: root.page.press(root.card.id)
        }

        PushButton {
            id: skip

            x: Math.round((side.width - width) / 2)
            y: button.visible ? button.y + button.height + 7 : Math.round((side.height - height) / 2)
            width: implicitWidth
            height: implicitHeight
            visible: root.card.skipTitle !== "" && !root.card.isDone
            title: root.card.skipTitle
            tints: root.tints
            isQuiet: true
            showsFocus: root.page.showsFocus
            onAction: root.page.skip(root.card.id)
        }

        Figure {
            id: mark

            x: side.width - width - doneText.implicitWidth - 7
            y: Math.round((side.height - height) / 2)
            width: 22
            height: 22
            name: "done"
            visible: root.card.isDone
        }

        Text {
            id: doneText

            x: side.width - implicitWidth
            y: Math.round((side.height - height) / 2)
            visible: root.card.isDone
            text: qsTr("Done")
            color: root.tints.done
            font.family: Metrics.family
            font.pixelSize: 13
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }
    }
}
