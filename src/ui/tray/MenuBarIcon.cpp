#include "ui/tray/MenuBarIcon.h"

#include <QPainter>
#include <QPixmap>
#include <algorithm>

namespace quorva {
namespace {

// Measures are in units of a square of 18 by 18.
constexpr double designSize = 18;
constexpr double left = 3;
constexpr double top = 2.5;
constexpr double pitch = 3.5;
constexpr double longest = 12;
constexpr double thickness = 2;
constexpr double cornerRadius = 1;

struct Colour {
    int red;
    int green;
    int blue;
    double opacity;
};
struct Bar {
    double part; ///< relative to the longest bar
    Colour clear;
    double fading; ///< its opacity where all bars have one colour
};

// clang-format off
constexpr std::array bars{
    Bar{1.0,  {230,  57,  70, 1.0},  1.0},
    Bar{0.85, {244, 162,  97, 1.0},  0.85},
    Bar{0.7,  {233, 196, 106, 1.0},  0.7},
    Bar{0.55, { 42, 157, 143, 0.85}, 0.55},
    Bar{0.4,  { 38,  70,  83, 0.5},  0.4},
};
// clang-format on

// These stand out from light panels and from dark ones.
constexpr Colour red{230, 57, 70, 1.0};
constexpr Colour amber{217, 119, 6, 1.0};
constexpr Colour grey{128, 128, 128, 1.0};

constexpr std::array sizes{16, 18, 22, 24, 32, 36, 44, 48, 54, 64, 72, 96, 128};

QColor paint(const Colour& colour, double opacity) {
    QColor paint(colour.red, colour.green, colour.blue);
    paint.setAlphaF(static_cast<float>(opacity));
    return paint;
}

QColor colourOf(const Bar& bar, Verdict verdict) {
    switch (verdict) {
    case Verdict::clear:
        break;
    case Verdict::found:
        return paint(red, bar.fading);
    case Verdict::notFullyWatching:
        return paint(amber, bar.fading);
    case Verdict::scanning:
    case Verdict::off:
        return paint(grey, bar.fading);
    }
    return paint(bar.clear, bar.clear.opacity);
}

/// An exclamation mark where something is not seen, a ring while it is looked at, in the corner
/// that the short bars leave free.
void drawMark(QPainter& painter, Verdict verdict) {
    constexpr double middle = 14.5;
    if (verdict == Verdict::notFullyWatching) {
        painter.setBrush(paint(amber, 1));
        painter.drawRoundedRect(QRectF(middle - 1.25, 8.5, 2.5, 5), 1.25, 1.25);
        painter.drawEllipse(QPointF(middle, 16), 1.4, 1.4);
    } else if (verdict == Verdict::scanning) {
        painter.setPen(QPen(paint(grey, 1), 1.75));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(QPointF(middle - 0.5, 14), 2.6, 2.6);
    }
}

} // namespace

std::array<IconBar, 5> iconBars(Verdict verdict) {
    std::array<IconBar, 5> painted;
    std::ranges::transform(bars, painted.begin(), [&](const Bar& bar) {
        return IconBar{bar.part, colourOf(bar, verdict)};
    });
    return painted;
}

QImage menuBarImage(Verdict verdict, int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / designSize, size / designSize);
    painter.setPen(Qt::NoPen);
    double y = top;
    for (const auto& [part, colour] : iconBars(verdict)) {
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(left, y, longest * part, thickness), cornerRadius,
                                cornerRadius);
        y += pitch;
    }
    drawMark(painter, verdict);
    return image;
}

QIcon menuBarIcon(Verdict verdict) {
    QIcon icon;
    for (const int size : sizes)
        icon.addPixmap(QPixmap::fromImage(menuBarImage(verdict, size)));
    return icon;
}

} // namespace quorva
