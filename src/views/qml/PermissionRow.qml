import QtQuick

/// Asks for access to the audio of other apps.
TitledRow {
    symbol: "speaker.wave.2.fill"
    isSelected: true
}
