// The head of a settings tab.
import QtQuick
import QtQuick.Controls.Basic

TabButton {
    id: button

    required property string symbol
    readonly property color ink: checked ? Theme.tealText : Theme.grey600

    padding: Theme.size(6)
    hoverEnabled: true
    Accessible.name: text
    Accessible.onPressAction: TabBar.tabBar.setCurrentIndex(TabBar.index)
    contentItem: Column {
        spacing: Theme.size(3)
        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: button.symbol
            color: button.ink
            size: Theme.size(18)
        }
        AppText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: button.text
            color: button.ink
            font { pixelSize: Theme.size(12); bold: button.checked }
            elide: Text.ElideRight
            wrapMode: Text.NoWrap
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.radius - 2
        color: button.checked ? Qt.alpha(Theme.teal, 0.12)
                              : button.hovered ? Theme.grey100 : "transparent"
        FocusRing { target: button }
    }
}
