import QtQuick
import Plemora

/// The panel as a window shows it: at rest while it is off screen.
VisibilityGate {
    id: root

    required property PanelBinding panel

    focus: true
    isVisible: panel.isVisible
    width: panel.width
    height: panel.height
    clip: true

    Binding {
        target: Metrics
        property: "isDark"
        value: root.panel.isDark
    }

    PanelView {
        anchors.fill: parent
        focus: true
        panel: root.panel
        animates: root.animates
    }
}
