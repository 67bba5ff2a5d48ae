#include "ui/windows/Placement.h"

#include <algorithm>

namespace quorva {

namespace {

constexpr int margin = 8;
constexpr int alertMarginRight = 16;

int within(int from, int wanted, int to) {
    return std::max(from,
                    std::min(wanted, to)); // a window larger than the screen starts at its edge
}

} // namespace

QPoint popoverPosition(QSize popover, const std::optional<QRect>& trayIcon, const QRect& screen,
                       const QRect& available) {
    const bool isPanelBelow = trayIcon ? trayIcon->center().y() > screen.center().y()
                                       : available.bottom() < screen.bottom();
    const int top = available.top() + margin;
    const int bottom = available.bottom() + 1 - margin - popover.height();
    const int right = available.right() + 1 - margin - popover.width();
    const int x = trayIcon ? trayIcon->center().x() - popover.width() / 2 : right;
    return {within(available.left() + margin, x, right),
            within(top, isPanelBelow ? bottom : top, bottom)};
}

QPoint alertPosition(int width, const QRect& available) {
    return {available.right() + 1 - alertMarginRight - width, available.top() + margin};
}

} // namespace quorva
