// The fourth step: calendar access and accounts.
import QtQuick
import QtQuick.Layouts

OnboardingPage {
    id: step

    readonly property bool isGranted: bridge.calendarGranted

    title: "Calendar Bot Detection"
    text: "Quorva scans your calendar events for AI bot attendees\nbefore your meetings start -- so you are never surprised."

    Card {
        width: parent.width
        visible: step.bridge.lacksCalendars
        FeatureRow {
            symbol: "exclamationmark.triangle.fill"
            title: "No Calendars on This Computer"
            text: "There is no calendar service and no folder of calendars, so there is nothing that Quorva could be allowed to read."
            tint: Theme.orange
            ink: Theme.orangeText
        }
        MissingCalendarsHelp { width: parent.width }
    }
    Card {
        width: parent.width
        visible: !step.isGranted && !step.bridge.lacksCalendars
        FeatureRow {
            symbol: "calendar"
            title: "Step 1: Allow Calendar Access"
            text: "macOS will ask for permission to read your calendars"
        }
        ActionButton {
            width: parent.width
            text: "Allow Calendar Access"
            symbol: "calendar.badge.checkmark"
            kind: ActionButton.Kind.Primary
            textSize: Theme.size(13)
            Accessible.name: "Allow read-only calendar access"
            onClicked: step.bridge.requestCalendarAccess()
        }
        NoteLine {
            symbol: "lock.fill"
            text: "Read-only. Quorva never modifies, deletes, or creates events."
        }
    }
    GrantedCard {
        width: parent.width
        visible: step.isGranted
        title: "Calendar Access Granted"
        text: "Quorva can scan your calendar events for bot attendees"
    }
    CalendarAccountsCard {
        width: parent.width
        bridge: step.bridge
    }
    Card {
        width: parent.width
        color: Theme.grey100
        NoteLine {
            symbol: "lock.fill"
            text: "Privacy: Quorva only reads event titles and attendee lists. Meeting content is never accessed."
        }
        NoteLine {
            symbol: "lock.fill"
            text: "An attendee such as notetaker@bot.example is compared with a list of known bots on this computer. Addresses of people are neither kept nor sent anywhere."
        }
    }

    buttons: [
        OnboardingButton {
            visible: step.isGranted
            title: "Continue"
            onClicked: step.bridge.next()
        },
        OnboardingButton {
            visible: !step.isGranted
            title: "Continue Without Calendar"
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
