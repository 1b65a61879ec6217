import QtQuick

/// Holds content that rests while it is off screen: nothing in it is animated or polled then.
FocusScope {
    id: root

    required property bool isVisible
    default property alias content: root.data

    // Rows of a hidden panel change without a show.
    readonly property bool animates: isVisible
}
