import QtQuick
import Plemora

/// A symbol of the module, around its middle.
Symbol {
    required property var symbol

    x: symbol.center.x - width / 2
    y: symbol.center.y - height / 2
    name: symbol.name
    pointSize: symbol.size
    color: symbol.color
    visible: name !== ""
}
