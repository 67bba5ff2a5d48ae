// The second step: what the program does not do.
import QtQuick

OnboardingPage {
    id: step

    title: "Your Data Never Leaves This Mac"
    text: "Quorva is built for professionals who handle\nsensitive information. Here is our privacy pledge."

    Repeater {
        model: [
            { symbol: "wifi.slash", title: "Zero Network Calls",
              text: "Quorva makes no internet connections. Not for analytics, not for updates, not for anything. Verify with Little Snitch or Lulu." },
            { symbol: "eye.slash.fill", title: "Read-Only Access",
              text: "Calendar access reads event titles and attendees. Accessibility reads meeting participant lists. Neither writes, modifies, or stores anything." },
            { symbol: "xmark.bin.fill", title: "No Data Collection",
              text: "No accounts, no sign-ups, no analytics, no telemetry, no crash reports. Your meeting data is never logged or transmitted." },
            { symbol: "display", title: "No Screen or Audio Recording",
              text: "Quorva does not request screen recording or microphone access for detection. It only reads text from meeting windows." }
        ]
        Card {
            id: pledge
            required property var modelData
            width: parent ? parent.width : 0
            padding: Theme.size(11)
            FeatureRow {
                symbol: pledge.modelData.symbol
                title: pledge.modelData.title
                text: pledge.modelData.text
            }
        }
    }

    buttons: [
        AppText {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: "Next: two optional permissions"
            color: Theme.secondaryText
            font.pixelSize: Theme.size(11)
        },
        OnboardingButton {
            title: "Continue to Setup"
            onClicked: step.bridge.next()
        }
    ]
}
