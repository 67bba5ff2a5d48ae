// Colours, sizes and animations of all views. Always light, whatever colours the desktop has.
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

    readonly property color amber: "#D97706"

    // Text colours. The palette's red, orange, teal, amber and blue have a contrast below 4.5:1 on white,
    // so they are darkened for text.
    readonly property color text: slate
    readonly property color secondaryText: grey600
    readonly property color redText: "#A81D29"
    readonly property color orangeText: "#85470F"
    readonly property color amberText: orangeText
    readonly property color tealText: "#17665C"
    readonly property color blueText: "#1D5BC4"

    readonly property color surface: "#FFFFFF"
    readonly property int radius: 10

    /// What a bridge's `verdict` means: core's Verdict, in its order.
    enum Verdict { Off, Scanning, NotFullyWatching, Clear, Found }

    /// The colour of a verdict, for symbols and, at low opacity, for what is behind them.
    function verdictColor(verdict) {
        switch (verdict) {
        case Theme.Verdict.Found: return red
        case Theme.Verdict.NotFullyWatching: return amber
        case Theme.Verdict.Clear: return teal
        }
        return grey400
    }
    /// The same for text.
    function verdictTextColor(verdict) {
        switch (verdict) {
        case Theme.Verdict.Found: return redText
        case Theme.Verdict.NotFullyWatching: return amberText
        case Theme.Verdict.Clear: return tealText
        }
        return grey600
    }
    /// Its symbol: each has a shape of its own.
    function verdictSymbol(verdict) {
        switch (verdict) {
        case Theme.Verdict.Found: return "exclamationmark.triangle.fill"
        case Theme.Verdict.NotFullyWatching: return "exclamationmark.shield.fill"
        case Theme.Verdict.Clear: return "checkmark.shield.fill"
        case Theme.Verdict.Scanning: return "magnifyingglass"
        }
        return "power"
    }

    /// A length or font size, scaled with the desktop's font size.
    function size(points) {
        return Math.round(points * desktopHints.textScale)
    }
    /// The duration of an animation: none if the user wants no motion.
    function duration(milliseconds) {
        return desktopHints.reducesMotion ? 0 : milliseconds
    }
    readonly property bool reducesMotion: desktopHints.reducesMotion
}
