// A text of one line, elided if it is too long.
import QtQuick

AppText {
    wrapMode: Text.NoWrap
    elide: Text.ElideRight
    maximumLineCount: 1
}
