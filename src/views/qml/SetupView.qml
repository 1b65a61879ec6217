import QtQuick
import Plemora

/// All of the setup window: the steps one below the other, or that nothing is left to do.
FocusScope {
    id: root

    required property SetupBinding page
    readonly property real margin: 28

    implicitWidth: 560
    implicitHeight: Math.max(cards.y + stack.implicitHeight + footer.height, complete.implicitHeight)
    focus: true
    Accessible.role: Accessible.Pane
    Accessible.name: page.title

    // Return does the next thing to do, wherever the focus is not.
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            event.accepted = root.pressNext();
        }
    }

    function pressNext() {
        if (page.isComplete) {
            page.finish();
            return true;
        }
        for (let i = 0; i < steps.count; ++i) {
            const card = steps.itemAt(i);
            if (card.card.isActive && card.button.visible && card.button.isEnabled) {
                page.press(card.card.id);
                return true;
            }
        }
        return false;
    }

    SetupTints {
        id: theme

        isDark: root.page.isDark
    }

    Rectangle {
        anchors.fill: parent
        visible: root.page.isOpaque
        color: theme.ground
    }

    Image {
        id: icon

        x: root.margin
        y: 44
        width: 60
        height: 60
        visible: !root.page.isComplete
        sourceSize: Qt.size(60, 60)
        source: Window.window === null ? "" : "image://appicon/icon?source=:/plemora/program/com.quorvane.mixer.svg"
        Accessible.ignored: true
    }

    Item {
        id: header

        x: icon.x + icon.width + 14
        y: icon.y + Math.max(0, Math.round((icon.height - height) / 2))
        width: root.width - x - root.margin
        height: line.y + line.height
        visible: !root.page.isComplete

        Paragraph {
            id: title

            width: parent.width
            text: root.page.title
            color: theme.text
            font.pixelSize: 24
            font.weight: Font.Bold
            Accessible.role: Accessible.Heading
        }

        Paragraph {
            id: line

            y: title.height + 3
            width: parent.width
            text: root.page.line
            color: theme.secondary
        }
    }

    Flickable {
        id: cards

        // The shadow of a card reaches beyond it.
        readonly property real room: 14

        y: Math.max(icon.y + icon.height, header.y + header.height) + 18 - room
        width: root.width
        height: root.height - y - footer.height
        visible: !root.page.isComplete
        contentHeight: stack.implicitHeight
        interactive: contentHeight > height + 0.5
        boundsBehavior: Flickable.StopAtBounds
        clip: interactive

        Item {
            id: stack

            width: root.width
            implicitHeight: column.height + 2 * cards.room

            Stack {
                id: column

                x: root.margin
                y: cards.room
                width: root.width - 2 * root.margin
                height: implicitHeight
                spacing: 10
                items: steps

                Repeater {
                    id: steps

                    model: root.page.cardCount

                    StepCard {
                        id: step

                        readonly property rect buttonFrame: {
                            const isSeen = button.visible && root.page.isVisible && !root.page.isComplete;
                            const place = Qt.rect(column.x + x + button.parent.x + button.x, cards.y - cards.contentY + column.y + y + button.y, button.width, button.height);
                            return isSeen ? place : Qt.rect(0, 0, 0, 0);
                        }

                        y: column.below(index)
                        width: column.width
                        height: implicitHeight
                        page: root.page
                        tints: theme
                        onButtonFrameChanged: root.page.reportButtonFrame(card.id, buttonFrame)
                        onHoldsFocusChanged: {
                            if (holdsFocus && cards.interactive)
                                cards.contentY = Math.max(Math.min(cards.contentY, y), y + height + 2 * cards.room - cards.height);
                        }
                    }
                }
            }
        }
    }

    Item {
        id: footer

        y: root.height - height
        width: root.width
        height: 62
        visible: !root.page.isComplete

        SetupProgress {
            x: root.margin
            y: Math.round((footer.height - height) / 2) - 2
            done: root.page.doneCards
            count: root.page.cardCount
            tints: theme
        }

        PushButton {
            x: footer.width - width - root.margin
            y: Math.round((footer.height - height) / 2) - 2
            width: implicitWidth
            height: implicitHeight
            visible: root.page.finishTitle !== ""
            title: root.page.finishTitle
            tints: theme
            showsFocus: root.page.showsFocus
            onAction: root.page.finish()
        }
    }

    SetupComplete {
        id: complete

        anchors.fill: parent
        visible: root.page.isComplete
        page: root.page
        tints: theme
    }
}
