import QtQuick

/// A glyph, a slider and perhaps a glyph after it, in one row.
Item {
    id: root

    property real leadingWidth: 24
    property real leadingGap: Metrics.gap
    property alias leading: leadingHolder.data
    property alias slider: sliderHolder.data
    property alias trailing: trailingHolder.data

    Item {
        id: leadingHolder

        x: Metrics.margin
        width: root.leadingWidth
        height: root.height
    }

    Item {
        id: sliderHolder

        x: leadingHolder.x + root.leadingWidth + root.leadingGap
        width: trailingHolder.x - x - (trailingHolder.width > 0 ? Metrics.gap : 0)
        height: root.height
    }

    Item {
        id: trailingHolder

        x: root.width - Metrics.margin - width
        width: childrenRect.width
        height: root.height
    }
}
