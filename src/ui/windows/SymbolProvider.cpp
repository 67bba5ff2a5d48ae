#include "ui/windows/SymbolProvider.h"

#include "ui/rows/DisplayText.h"
#include "ui/windows/SymbolTable.h"

#include <QIcon>
#include <QPainter>
#include <algorithm>

namespace quorva {

namespace {

constexpr int usualSize = 16;

QIcon iconOf(const QString& symbol) {
    const auto found =
        std::find_if(symbolIcons.begin(), symbolIcons.end(),
                     [&symbol](const SymbolIcon& each) { return ours(each.symbol) == symbol; });
    if (found == symbolIcons.end())
        return {};
    if (!found->icon.empty())
        if (const QIcon icon = QIcon::fromTheme(ours(found->icon)); !icon.isNull())
            return icon;
    return QIcon(":/quorva/icons/" + symbol + ".svg");
}

} // namespace

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const QString symbol = id.section('/', 0, 0);
    const QColor colour("#" + id.section('/', 1, 1));
    const int edge = std::max({requestedSize.width(), requestedSize.height(), 0});
    const QSize wanted = edge > 0 ? QSize(edge, edge) : QSize(usualSize, usualSize);
    QImage image(wanted, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    iconOf(symbol).paint(&painter, QRect(QPoint(0, 0), wanted));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), colour.isValid() ? colour : QColor(Qt::black));
    painter.end();
    if (size)
        *size = wanted;
    return image;
}

} // namespace quorva
