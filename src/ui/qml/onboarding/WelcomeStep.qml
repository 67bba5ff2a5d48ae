// The first step: what the program does.
import QtQuick

OnboardingPage {
    id: step

    title: "Know When You're Being Recorded"
    text: "Quorva detects AI recording bots in your meetings\nso you can protect privileged conversations."
    picture: ShieldBadge {
        anchors.horizontalCenter: parent.horizontalCenter
        size: Theme.size(76)
        isAnimated: true
    }

    Item { width: 1; height: Theme.size(2) }
    FeatureRow {
        symbol: "desktopcomputer"
        title: "Local Detection"
        tag: "Always active"
        text: "Detects 80+ bots running on your Mac -- no permissions needed"
    }
    FeatureRow {
        symbol: "calendar"
        title: "Calendar Shield"
        tag: "Read-only"
        text: "Scans your calendars for bot attendees before meetings start"
        tint: Theme.orange
        ink: Theme.orangeText
    }
    FeatureRow {
        symbol: "person.2.fill"
        title: "Meeting Guard"
        text: "Reads participant lists in Zoom, Teams, and Meet to find bots"
        tint: Theme.slate
        ink: Theme.slate
    }
    Item { width: 1; height: 1 }
    Flow {
        id: badges
        width: parent.width
        spacing: Theme.size(6)
        Repeater {
            model: [{ symbol: "lock.shield.fill", text: "100% on-device" },
                    { symbol: "wifi.slash", text: "Zero network calls" },
                    { symbol: "person.slash", text: "No account needed" }]
            Rectangle {
                id: badge
                required property var modelData
                width: (badges.width - 2 * badges.spacing) / 3
                height: column.implicitHeight + Theme.size(16)
                radius: Theme.radius - 2
                color: Theme.surface
                border { width: 1; color: Theme.grey200 }
                Column {
                    id: column
                    anchors.centerIn: parent
                    width: parent.width - Theme.size(8)
                    spacing: Theme.size(4)
                    Symbol {
                        anchors.horizontalCenter: parent.horizontalCenter
                        name: badge.modelData.symbol
                        color: Theme.tealText
                        size: Theme.size(16)
                    }
                    AppText {
                        width: parent.width
                        horizontalAlignment: Text.AlignHCenter
                        text: badge.modelData.text
                        font { bold: true; pixelSize: Theme.size(11) }
                    }
                }
            }
        }
    }

    buttons: [
        AppText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: "Setup takes about 60 seconds"
            color: Theme.secondaryText
            font.pixelSize: Theme.size(11)
        },
        OnboardingButton {
            title: "See How It Works"
            onClicked: step.bridge.next()
        },
        Flow {
            id: legalLine
            // Centred if it fits one line.
            x: Math.max(0, (parent.width - agreement.implicitWidth - privacy.implicitWidth
                            - joint.implicitWidth - terms.implicitWidth) / 2)
            width: parent.width - x
            AppText {
                id: agreement
                text: "By continuing, you agree to our "
                color: Theme.secondaryText
                font.pixelSize: Theme.size(11)
            }
            LinkText {
                id: privacy
                text: "Privacy Policy"
                onClicked: privacyPolicy.open()
            }
            AppText {
                id: joint
                text: " and "
                color: Theme.secondaryText
                font.pixelSize: Theme.size(11)
            }
            LinkText {
                id: terms
                text: "Terms of Service"
                onClicked: termsOfService.open()
            }
        }
    ]
    PrivacyPolicyView { id: privacyPolicy }
    TermsOfServiceView { id: termsOfService }
}
