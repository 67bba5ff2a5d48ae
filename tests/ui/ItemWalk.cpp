#include "ui/ItemWalk.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QColor>
#include <algorithm>
#include <cmath>
#include <functional>

namespace quorva {

namespace {

void walk(QQuickItem* item, const std::function<void(QQuickItem*)>& visit) {
    if (!item->isVisible()) // items that fade in are visible already
        return;
    visit(item);
    for (auto* const child : item->childItems())
        walk(child, visit);
}

bool isText(const QQuickItem* item) {
    return item->inherits("QQuickText") && !item->property("text").toString().isEmpty();
}

QColor over(const QColor& front, const QColor& back) {
    const auto mix = [&](float one, float other) {
        return one * front.alphaF() + other * (1 - front.alphaF());
    };
    return QColor::fromRgbF(mix(front.redF(), back.redF()), mix(front.greenF(), back.greenF()),
                            mix(front.blueF(), back.blueF()));
}

/// The background that an item paints: a rectangle itself, or a control's background item.
QColor fillOf(const QQuickItem* item) {
    if (item->inherits("QQuickRectangle"))
        return item->property("color").value<QColor>();
    if (const auto* const background = item->property("background").value<QQuickItem*>())
        return background->isVisible() ? fillOf(background) : QColor(Qt::transparent);
    return Qt::transparent;
}

QColor behind(const QQuickItem* item) {
    const auto* const parent = item->parentItem();
    return over(fillOf(item), parent ? behind(parent) : QColor(Qt::white));
}

double luminance(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

/// WCAG 2 exempts inactive controls.
bool isDisabled(const QQuickItem* item) {
    return !item->isEnabled();
}

} // namespace

std::vector<std::string> textsOf(const QQuickWindow& window) {
    std::vector<std::string> texts;
    walk(window.contentItem(), [&](const QQuickItem* item) {
        if (isText(item))
            texts.push_back(item->property("text").toString().toStdString());
    });
    return texts;
}

std::vector<QQuickItem*> controlsOf(const QQuickWindow& window) {
    std::vector<QQuickItem*> controls;
    walk(window.contentItem(), [&](QQuickItem* item) {
        if (item->inherits("QQuickAbstractButton") || item->inherits("QQuickComboBox") ||
            item->inherits("QQuickTextInput"))
            controls.push_back(item);
    });
    return controls;
}

QQuickItem* controlNamed(const QQuickWindow& window, const QString& name) {
    for (auto* const control : controlsOf(window))
        if (QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name) == name)
            return control;
    return nullptr;
}

void press(const QQuickWindow& window, const QString& name) {
    auto* const control = controlNamed(window, name);
    ASSERT_TRUE(control) << name.toStdString();
    QAccessible::queryAccessibleInterface(control)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
}

std::vector<std::pair<std::string, double>> contrastsOf(const QQuickWindow& window) {
    std::vector<std::pair<std::string, double>> contrasts;
    walk(window.contentItem(), [&](const QQuickItem* item) {
        if (isText(item) && !isDisabled(item)) {
            const QColor background = behind(item);
            const QColor ink = over(item->property("color").value<QColor>(), background);
            contrasts.emplace_back(item->property("text").toString().toStdString(),
                                   contrast(ink, background));
        }
    });
    return contrasts;
}

} // namespace quorva
