// The window of the first run.
import QtQuick
import QtQuick.Layouts
import QtQuick.Window

Window {
    id: onboarding

    required property var bridge
    readonly property var steps: [welcome, privacyPledge, accessibility, calendarSetup,
                                  detectionLive]

    title: "Welcome to Quorva"
    width: Math.min(Theme.size(520), Screen.desktopAvailableWidth)
    height: Math.min(Theme.size(640), Screen.desktopAvailableHeight - 40)
    minimumWidth: Math.min(Theme.size(420), width)
    minimumHeight: 300
    color: Theme.grey50

    Component { id: welcome; WelcomeStep { bridge: onboarding.bridge } }
    Component { id: privacyPledge; PrivacyPledgeStep { bridge: onboarding.bridge } }
    Component { id: accessibility; AccessibilityStep { bridge: onboarding.bridge } }
    Component { id: calendarSetup; CalendarSetupStep { bridge: onboarding.bridge } }
    Component { id: detectionLive; DetectionLiveStep { bridge: onboarding.bridge } }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        Item {
            Layout.fillWidth: true
            implicitHeight: indicator.implicitHeight + Theme.size(22)
            IconButton {
                anchors { left: parent.left; verticalCenter: parent.verticalCenter }
                anchors.leftMargin: Theme.size(14)
                visible: onboarding.bridge.step > 0
                symbol: "chevron.left"
                name: "Go back"
                onClicked: onboarding.bridge.back()
            }
            OnboardingStepIndicator {
                id: indicator
                anchors.centerIn: parent
                total: onboarding.bridge.total
                current: onboarding.bridge.position
            }
        }
        Loader {
            Layout.fillWidth: true
            Layout.fillHeight: true
            sourceComponent: onboarding.steps[onboarding.bridge.step]
        }
    }
}
