import QtQuick

/// The panel's own title.
Item {
    id: root

    required property string title

    Accessible.role: Accessible.Heading
    Accessible.name: title

    Label {
        x: Metrics.margin
        width: root.width - 2 * x
        height: root.height + 2
        text: root.title
        font.weight: Font.DemiBold
    }
}
