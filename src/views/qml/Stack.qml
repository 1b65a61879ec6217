import QtQuick

/// The items of a repeater one below the other. They have their places at once, where a Column
/// would give them in the next frame: who asks for the height may have no frames yet. Each item
/// binds its y to below(index).
Item {
    id: root

    required property Repeater items
    property real spacing: 0

    /// Where the item of that index begins: below those before it.
    function below(index) {
        let y = 0;
        for (let i = 0; i < index; ++i) {
            const item = items.itemAt(i);
            y += item ? item.height + spacing : 0;
        }
        return y;
    }

    implicitHeight: Math.max(0, below(items.count) - spacing)
}
