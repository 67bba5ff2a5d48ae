// The third step: the permission to read the windows of meetings.
import QtQuick
import QtQuick.Layouts

OnboardingPage {
    id: step

    readonly property bool isGranted: bridge.accessibilityGranted
    readonly property bool showDeniedHelp: bridge.accessibilityRequested && !isGranted

    title: "Live Meeting Detection"
    text: "Quorva reads participant lists in Zoom, Teams, and Meet\nto detect bot participants and recording indicators."

    ListBox {
        width: parent.width
        title: "WHAT QUORVA READS"
        symbol: "checkmark.circle.fill"
        tint: Theme.tealText
        lines: ["Participant names in meeting windows", "Recording and AI indicator banners",
                "Meeting window titles (to identify the platform)"]
    }
    ListBox {
        width: parent.width
        title: "WHAT QUORVA DOES NOT DO"
        symbol: "xmark.circle.fill"
        tint: Theme.redText
        lines: ["No screen recording or screenshots", "No keyboard or mouse tracking",
                "No reading of chat messages or shared content", "No data stored or transmitted"]
    }
    GrantedCard {
        id: granted
        width: parent.width
        visible: step.isGranted
        title: "Accessibility Access Granted"
        text: "Quorva can now detect bots in live meetings"
        onVisibleChanged: if (visible) step.reveal(granted)
    }
    HelpCard {
        id: help
        width: parent.width
        visible: step.showDeniedHelp
        title: "Manual Setup Required"
        text: "macOS requires you to manually toggle Quorva in System Settings. Look for \"QuorvaApp\" in the list and flip the switch."
        help: step.bridge.accessibilityHelp
        action: "Open Accessibility Settings"
        onPressed: step.bridge.openAccessibilitySettings()
        onVisibleChanged: if (visible) step.reveal(help)
        onHeightChanged: if (visible) step.reveal(help)
    }

    buttons: [
        OnboardingButton {
            visible: !step.isGranted
            title: "Enable Live Meeting Detection"
            symbol: "person.2.fill"
            Accessible.name: "Enable accessibility access for live meeting detection"
            onClicked: step.bridge.requestAccessibility()
        },
        OnboardingButton {
            visible: step.isGranted
            title: "Continue"
            onClicked: step.bridge.next()
        },
        OnboardingButton {
            visible: !step.isGranted
            title: "Continue Without This"
            style: OnboardingButton.Style.Plain
            onClicked: step.bridge.next()
        },
        AppText {
            visible: !step.isGranted
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: "You can enable this later in Settings"
            color: Theme.secondaryText
            font.pixelSize: Theme.size(11)
        }
    ]
}
