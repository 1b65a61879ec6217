import QtQuick
import Plemora

/// What to do in a window of the system beside which it stands.
FocusScope {
    id: root

    required property HelperBinding page
    readonly property real margin: 20
    // It is to have room below System Settings.
    readonly property real edge: 15
    readonly property bool points: page.pointsUp || page.pointsLeft || page.pointsRight
    readonly property bool hasSign: page.hasDragIcon || points
    // On the side that it points to.
    readonly property bool isSignRight: page.pointsRight
    readonly property bool hasFooter: page.backTitle !== "" || page.doneTitle !== ""

    implicitWidth: 468
    implicitHeight: page.hasSucceeded ? success.height : body.height + (hasFooter ? footer.height : 0)
    focus: true
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Help with setup")

    SetupTints {
        id: theme

        isDark: true
        isGlass: true
    }

    Plate {
        // White words are to be read over a white window too. Within the rim of the glass.
        anchors.fill: parent
        anchors.margins: 1
        radius: 19
        color: Qt.rgba(0.04, 0.04, 0.07, 0.32)
    }

    Nod {
        id: nod

        page: root.page
        isRunning: !root.page.hasSucceeded && !root.page.hasDragIcon
    }

    Item {
        id: body

        width: root.width
        height: Math.max(sign.visible ? sign.height : 0, words.height) + root.edge + (root.hasFooter ? 8 : root.edge)
        visible: !root.page.hasSucceeded

        Item {
            id: sign

            x: root.isSignRight ? root.width - root.margin - width : root.margin
            y: root.edge + Math.max(0, Math.round((words.height - height) / 2))
            width: root.page.hasDragIcon ? 64 : 46
            height: width
            visible: root.hasSign

            Plate {
                x: nod.x
                y: nod.y
                width: 46
                height: 46
                radius: 23
                visible: !root.page.hasDragIcon
                color: "#2f7ff3"
                bottomColor: "#1a5fd6"

                Symbol {
                    anchors.centerIn: parent
                    name: Window.window === null ? "" : "arrow.up"
                    pointSize: 20
                    rotation: root.page.pointsLeft ? -90 : root.page.pointsRight ? 90 : 0
                }
            }

            DragIcon {
                width: implicitWidth
                height: implicitHeight
                visible: root.page.hasDragIcon
                page: root.page
                tints: theme
            }

            Plate {
                // The way that the icon takes.
                x: root.page.pointsLeft ? -9 : root.page.pointsRight ? parent.width - 15 : parent.width / 2 - 12
                y: root.page.pointsUp ? -8 : parent.height / 2 - 12
                width: 24
                height: 24
                radius: 12
                visible: root.page.hasDragIcon && root.points
                color: "#2f7ff3"
                bottomColor: "#1a5fd6"

                Symbol {
                    anchors.centerIn: parent
                    name: Window.window === null ? "" : "arrow.up"
                    pointSize: 11
                    rotation: root.page.pointsLeft ? -90 : root.page.pointsRight ? 90 : 0
                }
            }
        }

        Item {
            id: words

            x: sign.visible && !root.isSignRight ? sign.x + sign.width + 18 : root.margin
            y: root.edge + Math.max(0, Math.round(((sign.visible ? sign.height : 0) - height) / 2))
            width: (sign.visible && root.isSignRight ? sign.x - 18 : root.width - root.margin) - x
            height: note.visible ? note.y + note.height : instructions.height

            Paragraph {
                id: instructions

                width: parent.width
                textFormat: Text.StyledText
                text: Window.window === null ? root.page.spokenInstructions : root.page.instructions
                color: theme.text
                font.pixelSize: 15
                lineHeight: 1.1
                Accessible.name: root.page.spokenInstructions
            }

            MovingFigure {
                id: spinner

                y: note.y + 1
                width: 14
                height: 14
                name: "spinner"
                color: "white"
                visible: root.page.isBusy
                moves: root.page.animates
                duration: 1000
            }

            Paragraph {
                id: note

                x: spinner.visible ? 21 : 0
                y: instructions.height + 5
                width: parent.width - x
                visible: text !== ""
                text: root.page.note !== "" ? root.page.note : root.page.isBusy ? qsTr("Waiting…") : ""
                color: theme.secondary
                font.pixelSize: 12
            }
        }
    }

    Item {
        id: footer

        readonly property real room: width - 2 * root.margin
        /// Whether all of its buttons have room beside each other.
        readonly property bool isOneLine: !ask.visible || back.implicitWidth + ask.implicitWidth + (done.visible ? done.implicitWidth + 16 : 0) + 16 <= room

        y: body.height
        width: root.width
        height: (done.visible ? 46 : 34) + (isOneLine ? 0 : ask.height + 6)
        visible: root.hasFooter && !root.page.hasSucceeded

        PushButton {
            id: back

            x: root.margin
            y: footer.height - height - 14 - (done.visible ? 6 : 0)
            width: implicitWidth
            height: implicitHeight
            visible: root.page.backTitle !== ""
            title: root.page.backTitle
            tints: theme
            isQuiet: true
            quietSize: 11
            showsFocus: root.page.showsFocus
            onAction: root.page.goBack()
        }

        PushButton {
            id: ask

            x: footer.isOneLine ? (done.visible ? done.x - 16 : footer.width - root.margin) - width : root.margin
            y: footer.isOneLine ? back.y : back.y - height - 6
            width: implicitWidth
            height: implicitHeight
            visible: root.page.askTitle !== ""
            title: root.page.askTitle
            tints: theme
            isQuiet: true
            quietSize: 11
            showsFocus: root.page.showsFocus
            onAction: root.page.askInstead()
        }

        PushButton {
            id: done

            x: footer.width - width - root.margin
            y: footer.height - height - 14
            width: implicitWidth
            height: implicitHeight
            visible: root.page.doneTitle !== ""
            title: root.page.doneTitle
            tints: theme
            isPrimary: true
            showsFocus: root.page.showsFocus
            onAction: root.page.done()
        }
    }

    Item {
        id: success

        width: root.width
        height: outcome.y + outcome.height + 18
        visible: root.page.hasSucceeded

        OneTimeFigure {
            id: mark

            x: Math.round((parent.width - width) / 2)
            y: 10
            width: 68
            height: 68
            name: "success"
            shown: root.page.hasSucceeded
            moves: root.page.animates
            duration: 900
            Accessible.role: Accessible.Graphic
            Accessible.name: qsTr("Done")
        }

        Paragraph {
            id: outcome

            x: 40
            y: mark.y + mark.height + 2
            width: parent.width - 80
            horizontalAlignment: Text.AlignHCenter
            text: root.page.spokenInstructions
            color: theme.text
            font.pixelSize: 15
            font.weight: Font.Medium
        }
    }
}
