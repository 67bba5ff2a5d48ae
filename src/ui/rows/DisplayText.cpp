#include "ui/rows/DisplayText.h"

namespace quorva {

namespace {

constexpr char16_t firstStrongIsolate = 0x2068;
constexpr char16_t popIsolate = 0x2069;

bool turnsDirection(QChar c) {
    return (c >= QChar(0x202A) && c <= QChar(0x202E)) || (c >= QChar(0x2066) && c <= QChar(0x2069));
}

bool isBlank(QChar c) {
    return c.isSpace() || c.category() == QChar::Other_Control;
}

} // namespace

QString foreign(std::string_view text) {
    QString line;
    for (const QChar c : ours(text)) {
        if (turnsDirection(c))
            continue;
        if (!isBlank(c))
            line.append(c);
        else if (!line.isEmpty() && line.back() != QChar(' '))
            line.append(QChar(' '));
    }
    return line.trimmed();
}

QString isolated(std::string_view text) {
    const QString line = foreign(text);
    if (!line.isRightToLeft()) // the usual case needs no isolation
        return line;
    return QChar(firstStrongIsolate) + line + QChar(popIsolate);
}

} // namespace quorva
