// A text of one line, which ends in dots where it does not fit.
import QtQuick

AppText {
    wrapMode: Text.NoWrap
    horizontalAlignment: Text.AlignLeft // whichever way the text itself is written
    elide: Text.ElideRight
    maximumLineCount: 1
}
