import QtQuick
import Plemora

/// The end of setup.
FocusScope {
    id: root

    required property SetupBinding page
    required property SetupTints tints
    readonly property real contentHeight: drawing.height + 22 + title.height + 10 + lines.height + 28 + finish.height
    readonly property real start: Math.max(40, Math.round((height - contentHeight) / 2))

    implicitHeight: contentHeight + 80

    OneTimeFigure {
        id: drawing

        x: Math.round((root.width - width) / 2)
        y: root.start
        width: 330
        height: 185
        name: "allSet"
        shown: root.visible
        moves: root.page.animates
        duration: 1300
    }

    Paragraph {
        id: title

        x: 40
        y: drawing.y + drawing.height + 22
        width: root.width - 80
        horizontalAlignment: Text.AlignHCenter
        text: root.page.title
        color: root.tints.text
        font.pixelSize: 34
        font.weight: Font.Bold
        Accessible.role: Accessible.Heading
    }

    Stack {
        id: lines

        x: 40
        y: title.y + title.height + 10
        width: root.width - 80
        height: implicitHeight
        spacing: 4
        items: paragraphs

        Repeater {
            id: paragraphs

            model: root.page.completeLines

            Paragraph {
                required property string modelData
                required property int index

                y: lines.below(index)
                width: lines.width
                horizontalAlignment: Text.AlignHCenter
                text: modelData
                color: root.tints.secondary
                font.pixelSize: 15
            }
        }
    }

    PushButton {
        id: show

        x: Math.round((root.width - width - (finish.visible ? finish.width + 12 : 0)) / 2)
        y: finish.y
        width: implicitWidth
        height: implicitHeight
        implicitHeight: 34
        minimumWidth: 124
        visible: root.page.showTitle !== ""
        title: root.page.showTitle
        tints: root.tints
        showsFocus: root.page.showsFocus
        onAction: root.page.show()
    }

    PushButton {
        id: finish

        x: show.visible ? show.x + show.width + 12 : Math.round((root.width - width) / 2)
        y: lines.y + lines.height + 28
        width: implicitWidth
        height: implicitHeight
        implicitHeight: 34
        minimumWidth: 124
        visible: root.page.finishTitle !== ""
        title: root.page.finishTitle
        tints: root.tints
        isPrimary: true
        showsFocus: root.page.showsFocus
        onAction: root.page.finish()
    }
}
