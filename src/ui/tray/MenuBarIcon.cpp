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
    Colour alert;
};

// clang-format off
constexpr std::array bars{
    Bar{1.0,  {230,  57,  70, 1.0},  {230, 57, 70, 1.0}},
    Bar{0.85, {244, 162,  97, 1.0},  {230, 57, 70, 0.85}},
    Bar{0.7,  {233, 196, 106, 1.0},  {230, 57, 70, 0.7}},
    Bar{0.55, { 42, 157, 143, 0.85}, {230, 57, 70, 0.55}},
    Bar{0.4,  { 38,  70,  83, 0.5},  {230, 57, 70, 0.4}},
};
// clang-format on

constexpr std::array sizes{16, 18, 22, 24, 32, 36, 44, 48, 54, 64, 72, 96, 128};

} // namespace

std::array<IconBar, 5> iconBars(bool hasActiveThreats) {
    std::array<IconBar, 5> painted;
    std::ranges::transform(bars, painted.begin(), [&](const Bar& bar) {
        const auto& colour = hasActiveThreats ? bar.alert : bar.clear;
        QColor fill(colour.red, colour.green, colour.blue);
        fill.setAlphaF(static_cast<float>(colour.opacity));
        return IconBar{bar.part, fill};
    });
    return painted;
}

QImage menuBarImage(bool hasActiveThreats, int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / designSize, size / designSize);
    painter.setPen(Qt::NoPen);
    double y = top;
    for (const auto& [part, colour] : iconBars(hasActiveThreats)) {
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(left, y, longest * part, thickness), cornerRadius,
                                cornerRadius);
        y += pitch;
    }
    return image;
}

QIcon menuBarIcon(bool hasActiveThreats) {
    QIcon icon;
    for (const int size : sizes)
        icon.addPixmap(QPixmap::fromImage(menuBarImage(hasActiveThreats, size)));
    return icon;
}

} // namespace quorva
