import QtQuick
import Plemora

/// A symbol of the module, around its middle.
Symbol {
    required property var symbol

    x: symbol.center.x - width / 2
    y: symbol.center.y - height / 2
    // Not before there is a window, whose scale the picture is made for.
    name: Window.window === null ? "" : symbol.name
    pointSize: symbol.size
    color: symbol.color
    visible: name !== ""
}
