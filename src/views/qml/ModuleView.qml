import QtQuick
import Plemora

/// The program's module in Control Center, drawn as the system draws its own. It shows; whoever
/// hosts it sees to the pointer.
Item {
    id: root

    required property ModuleBinding module

    Binding {
        target: root.module
        property: "width"
        value: root.width
    }

    Text {
        x: root.module.titleFrame.x
        y: root.module.titleFrame.y
        width: root.module.titleFrame.width / scale
        height: root.module.titleFrame.height / scale
        scale: root.module.titleScale
        transformOrigin: Item.TopLeft
        text: root.module.title
        color: root.module.foreground
        font.family: Metrics.family
        font.pixelSize: root.module.titlePixels
        font.weight: Font.Medium
        font.hintingPreference: Font.PreferNoHinting
        horizontalAlignment: Text.AlignLeft
        verticalAlignment: Text.AlignVCenter
        textFormat: Text.PlainText
        Accessible.ignored: true
    }

    PlacedSymbol {
        symbol: root.module.chevron
    }

    PlacedSymbol {
        symbol: root.module.output
    }

    ModuleTrack {
        x: root.module.track.x
        y: root.module.track.y + (root.module.track.height - height) / 2
        width: root.module.track.width
        height: root.module.knob.height
        module: root.module
    }

    PlacedSymbol {
        symbol: root.module.loudness
    }

    Capsule {
        x: root.module.button.x
        y: root.module.button.y
        width: root.module.button.width
        height: root.module.button.height
        color: root.module.buttonColor
        visible: width > 0
    }

    PlacedSymbol {
        symbol: root.module.buttonSymbol
    }
}
