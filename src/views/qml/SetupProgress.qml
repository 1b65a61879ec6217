import QtQuick
import Plemora

/// How many steps are done: a bar in as many parts, and words.
Item {
    id: root

    required property int done
    required property int count
    required property SetupTints tints
    readonly property string words: qsTr("%1 of %2 done").arg(done).arg(count)

    implicitWidth: label.x + label.implicitWidth
    implicitHeight: 20
    Accessible.role: Accessible.StaticText
    Accessible.name: words

    Repeater {
        model: root.count

        Plate {
            required property int index

            x: index * 28
            y: Math.round((root.height - height) / 2)
            width: 24
            height: 5
            radius: 2.5
            color: index < root.done ? "#30b85c" : root.tints.controlPressed
        }
    }

    Text {
        id: label

        x: root.count * 28 + 8
        anchors.verticalCenter: parent.verticalCenter
        text: root.words
        color: root.tints.secondary
        font.family: Metrics.family
        font.pixelSize: 12
        Accessible.ignored: true
    }
}
