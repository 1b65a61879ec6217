import QtQuick

/// Opens the system's list of receivers beside itself whenever its trigger changes.
Item {
    id: root

    required property int trigger
    property int last: 0

    /// The place beside which the list opens, in the scene.
    signal present(rect place)

    onTriggerChanged: {
        if (trigger !== last) {
            last = trigger;
            present(root.mapToItem(null, Qt.rect(0, 0, width, height)));
        }
    }
}
