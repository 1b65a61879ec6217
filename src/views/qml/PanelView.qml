import QtQuick
import Plemora

/// The content of the mixer panel: one row below the other, as the binding lists them.
FocusScope {
    id: root

    required property PanelBinding panel
    property bool animates: true

    Accessible.role: Accessible.Pane
    Accessible.name: panel.title

    Keys.onPressed: event => {
        event.accepted = navigator.pressKey(event);
        if (!event.accepted && event.key === Qt.Key_M && event.modifiers === Qt.NoModifier) {
            root.panel.toggleMasterMute();
            event.accepted = true;
        }
    }

    Connections {
        target: root.panel

        function onIsVisibleChanged() {
            if (root.panel.isVisible) {
                list.positionViewAtBeginning();
            } else {
                navigator.leave();
            }
        }
    }

    RowNavigator {
        id: navigator

        list: list
    }

    ListView {
        id: list

        anchors.fill: parent
        boundsBehavior: Flickable.StopAtBounds
        bottomMargin: root.panel.bottomPadding
        interactive: contentHeight + bottomMargin > height
        cacheBuffer: 400
        model: root.panel.rows

        delegate: Loader {
            id: place

            required property RowBinding row
            required property int index
            readonly property var controlRows: item ? item.controlRows ?? [] : []

            width: ListView.view.width
            height: row.height
            sourceComponent: [title, master, divider, header, permission, empty, app, outputs, device, airPlay, settings][row.kind]

            Component {
                id: title

                PanelTitle {
                    title: place.row.title
                }
            }

            Component {
                id: master

                MasterRow {
                    row: place.row
                    panel: root.panel
                }
            }

            Component {
                id: divider

                Item {
                    Rectangle {
                        x: Metrics.margin
                        y: Math.floor(parent.height / 2)
                        width: parent.width - 2 * x
                        height: 1
                        color: Metrics.divider
                    }
                }
            }

            Component {
                id: header

                SectionHeader {
                    title: place.row.title
                }
            }

            Component {
                id: permission

                PermissionRow {
                    title: place.row.title
                    detail: place.row.detail
                    chevron: place.row.symbol
                    showsFocus: root.panel.showsFocus
                    onAction: root.panel.setUp()
                }
            }

            Component {
                id: empty

                Label {
                    text: place.row.title
                    secondary: true
                    horizontalAlignment: Text.AlignHCenter
                    Accessible.ignored: false
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
            }

            Component {
                id: app

                AppRow {
                    row: place.row
                    panel: root.panel
                }
            }

            Component {
                id: outputs

                AppOutputList {
                    row: place.row
                    showsFocus: root.panel.showsFocus
                    onChoose: uid => root.panel.setOutput(place.row.rowId, uid)
                }
            }

            Component {
                id: device

                DeviceRow {
                    name: place.row.title
                    symbol: place.row.symbol
                    isSelected: place.row.isSelected
                    showsFocus: root.panel.showsFocus
                    onAction: root.panel.chooseDevice(place.row.rowId)
                }
            }

            Component {
                id: airPlay

                AirPlayRow {
                    id: airPlayRow

                    title: place.row.title
                    detail: place.row.detail
                    chevron: place.row.symbol
                    showsFocus: root.panel.showsFocus

                    RoutePicker {
                        anchors.fill: parent
                        trigger: airPlayRow.trigger
                        onPresent: place => root.panel.presentRoutes(place)
                    }
                }
            }

            Component {
                id: settings

                HoverRow {
                    label: place.row.title
                    showsFocus: root.panel.showsFocus
                    onAction: root.panel.openSoundSettings()

                    Label {
                        anchors.fill: parent
                        anchors.leftMargin: Metrics.margin
                        anchors.rightMargin: Metrics.margin
                        text: place.row.title
                    }
                }
            }
        }

        add: Transition {
            id: entering

            enabled: root.animates

            NumberAnimation {
                property: "opacity"
                from: 0
                to: 1
                duration: 180
            }
            NumberAnimation {
                property: "y"
                from: entering.ViewTransition.destination.y - 10
                duration: 180
                easing.type: Easing.OutCubic
            }
        }
        remove: Transition {
            id: leaving

            enabled: root.animates

            NumberAnimation {
                property: "opacity"
                to: 0
                duration: 120
            }
            NumberAnimation {
                property: "y"
                to: leaving.ViewTransition.item.y - 10
                duration: 120
                easing.type: Easing.InCubic
            }
        }
        move: Transition {
            enabled: root.animates

            NumberAnimation {
                property: "y"
                duration: 180
                easing.type: Easing.OutCubic
            }
        }
        displaced: Transition {
            enabled: root.animates

            NumberAnimation {
                property: "y"
                duration: 180
                easing.type: Easing.OutCubic
            }
            // A row that was entering when it was pushed on.
            NumberAnimation {
                property: "opacity"
                to: 1
                duration: 60
            }
        }
    }

    ScrollMark {
        list: list
    }
}
