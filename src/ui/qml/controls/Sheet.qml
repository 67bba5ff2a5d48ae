// A sheet over a window, with a title and a button that closes it.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Templates as T

Popup {
    id: sheet

    required property string title
    default property alias contents: body.data

    parent: T.Overlay.overlay
    x: Theme.size(10)
    y: Theme.size(10)
    width: parent ? parent.width - 2 * x : 0
    height: parent ? parent.height - 2 * y : 0
    padding: 0
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape
    T.Overlay.modal: Rectangle { color: "#73264653" }
    onOpened: done.forceActiveFocus(Qt.PopupFocusReason)
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.duration(120) } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.duration(80) } }

    background: Rectangle {
        radius: Theme.radius
        color: Theme.surface
    }
    contentItem: ColumnLayout {
        spacing: 0
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: Theme.size(12)
            AppText {
                Layout.fillWidth: true
                text: sheet.title
                font { bold: true; pixelSize: Theme.size(15) }
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            ActionButton {
                id: done
                text: "Done"
                onClicked: sheet.close()
            }
        }
        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 1
            color: Theme.grey200
        }
        Item {
            id: body
            Layout.fillWidth: true
            Layout.fillHeight: true
        }
    }
}
