// Colours, sizes and motion of all views. Light, whatever the desktop's own colours are.
pragma Singleton
import QtQuick

QtObject {
    // The palette.
    readonly property color red: "#E63946"
    readonly property color orange: "#F4A261"
    readonly property color yellow: "#E9C46A"
    readonly property color teal: "#2A9D8F"
    readonly property color slate: "#264653"
    readonly property color grey50: "#FAFAFA"
    readonly property color grey100: "#F5F5F5"
    readonly property color grey200: "#E5E5E5"
    readonly property color grey300: "#D4D4D4"
    readonly property color grey400: "#8A8A8A"
    readonly property color grey500: "#737373"
    readonly property color grey600: "#525252"
    readonly property color blue: "#3B82F6"
    readonly property color lightRed: "#FEF2F2"
    readonly property color redLine: "#FECACA"

    // Texts. The palette's red, orange, teal and blue have less than 4.5:1 on white: as the colour
    // of a text they are darkened.
    readonly property color text: slate
    readonly property color secondaryText: grey600
    readonly property color redText: "#A81D29"
    readonly property color orangeText: "#85470F"
    readonly property color tealText: "#17665C"
    readonly property color blueText: "#1D5BC4"

    readonly property color surface: "#FFFFFF"
    readonly property int radius: 10

    /// A length or font size that grows with the font the user has chosen for the desktop.
    function size(points) {
        return Math.round(points * desktopHints.textScale)
    }
    /// How long a motion takes: no time when the user wants none.
    function duration(milliseconds) {
        return desktopHints.reducesMotion ? 0 : milliseconds
    }
    readonly property bool reducesMotion: desktopHints.reducesMotion
}
