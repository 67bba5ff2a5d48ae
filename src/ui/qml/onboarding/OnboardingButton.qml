// A button that continues: filled for the recommended way, plain for the other one.
import QtQuick

ActionButton {
    id: button

    enum Style { Filled, Plain }

    required property string title
    property int style: OnboardingButton.Style.Filled

    text: title
    kind: style === OnboardingButton.Style.Filled ? ActionButton.Kind.Primary
                                                  : ActionButton.Kind.Link
    textSize: style === OnboardingButton.Style.Filled ? Theme.size(14) : Theme.size(12)
    padding: Theme.size(style === OnboardingButton.Style.Filled ? 10 : 5)
    width: parent.width
}
