import QtQuick

/// The loud end of a slider.
Symbol {
    name: "speaker.wave.3.fill"
    pointSize: 15
}
