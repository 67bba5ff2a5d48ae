// The outline of a window with rounded corners, for desktops whose windows cannot be translucent.
#pragma once

#include <QBitmap>
#include <QPainter>
#include <QRegion>

namespace quorva {

/// Pure function; a QGuiApplication must exist.
[[nodiscard]] inline QRegion roundedMask(QSize size, int radius) {
    QBitmap outline(size);
    outline.clear();
    QPainter painter(&outline);
    painter.setBrush(Qt::color1);
    painter.setPen(Qt::color1);
    painter.drawRoundedRect(QRect(QPoint(0, 0), size - QSize(1, 1)), radius, radius);
    return QRegion(outline);
}

} // namespace quorva
