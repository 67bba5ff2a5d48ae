// What to do where there is neither a calendar service nor a folder of calendars.
import QtQuick

AppText {
    text: "Install evolution-data-server, which holds the desktop's calendar accounts, or put .ics files into a folder below ~/.local/share/calendars. Quorva notices when there is one."
    font.pixelSize: Theme.size(12)
}
