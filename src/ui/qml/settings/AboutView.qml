// The program's name and version, and its legal documents.
import QtQuick

SettingsTab {
    id: tab

    Item { width: 1; height: Theme.size(4) }
    ShieldBadge {
        anchors.horizontalCenter: parent.horizontalCenter
        size: Theme.size(84)
    }
    Column {
        width: parent.width
        spacing: Theme.size(4)
        AppText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: "Quorva"
            font { bold: true; pixelSize: Theme.size(22) }
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        AppText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: "Version " + tab.bridge.version
            color: Theme.secondaryText
        }
    }
    AppText {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        text: "Quorva detects AI meeting recording bots and helps you establish legal non-consent."
    }
    AppText {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        text: "This is not legal advice. Consult an attorney for your specific situation."
        color: Theme.secondaryText
        font.pixelSize: Theme.size(12)
    }
    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: Theme.size(18)
        LinkText {
            text: "Privacy Policy"
            textSize: Theme.size(13)
            onClicked: privacyPolicy.open()
        }
        LinkText {
            text: "Terms of Service"
            textSize: Theme.size(13)
            onClicked: termsOfService.open()
        }
        LinkText {
            text: "Website"
            textSize: Theme.size(13)
            onClicked: tab.bridge.openWebsite()
        }
    }
    AppText {
        width: parent.width
        visible: text !== ""
        horizontalAlignment: Text.AlignHCenter
        text: tab.bridge.websiteHelp
        font.pixelSize: Theme.size(12)
    }
    PrivacyPolicyView { id: privacyPolicy }
    TermsOfServiceView { id: termsOfService }
}
