// A text of one line, which ends in dots where it does not fit.
import QtQuick

AppText {
    wrapMode: Text.NoWrap
    elide: Text.ElideRight
    maximumLineCount: 1
}
