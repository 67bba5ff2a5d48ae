// The menu of a detection's row.
import QtQuick
import QtQuick.Controls.Basic

Menu {
    id: menu

    required property string product
    signal allowed()

    margins: 6
    background: Rectangle {
        implicitWidth: Theme.size(150)
        radius: Theme.radius - 2
        color: Theme.surface
        border { width: 1; color: Theme.grey300 }
    }
    MenuItem {
        id: item
        text: "Allow…"
        onTriggered: menu.allowed()
        Accessible.name: text
        Accessible.onPressAction: {
            menu.allowed()
            menu.close()
        }
        Accessible.description: "Hides " + menu.product
                                + " from now on. The settings list what is allowed."
        contentItem: Column {
            AppText { text: item.text; Accessible.ignored: true }
            AppText {
                width: parent.width
                text: "Hide it from now on"
                color: Theme.secondaryText
                font.pixelSize: Theme.size(11)
                Accessible.ignored: true
            }
        }
        background: Rectangle {
            radius: Theme.radius - 3
            color: item.highlighted ? Theme.grey200 : "transparent"
        }
    }
}
