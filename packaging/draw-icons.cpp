// Draws the application's icon: the five bars on a light plate. Built and run with the programs, so
// that the icon has the colours and lengths of the tray icon's bars.
#include "base/ApplicationId.h"
#include "ui/tray/MenuBarIcon.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {

using namespace quorva;

constexpr int sizes[] = {16, 22, 24, 32, 48, 64, 128, 256};
constexpr int anySize = 256;

/// The measures at one size, rounded to whole pixels where edges must be sharp.
struct Measures {
    explicit Measures(int size_)
        : size(size_),
          edge(std::floor(size / 32.0)),
          thickness(std::max(2.0, part(0.085))),
          gap(std::max(1.0, part(0.07))),
          top(std::floor((size - 5 * thickness - 4 * gap) / 2)),
          left(std::max(3.0, part(0.2))),
          longest(size - 2 * left) {}

    [[nodiscard]] double part(double share) const { return std::round(size * share); }

    int size;
    double edge; ///< margin around the plate
    double thickness;
    double gap;
    double top;
    double left;
    double longest;
};

QByteArray rectangle(double x, double y, double width, double height, double radius,
                     const QByteArray& attributes) {
    return QString("  <rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" rx=\"%5\" %6/>\n")
        .arg(QString::number(x), QString::number(y), QString::number(width),
             QString::number(height), QString::number(radius), QString::fromLatin1(attributes))
        .toLatin1();
}

QByteArray svg(int size) {
    const Measures at(size);
    const auto side = QByteArray::number(size);
    QByteArray text = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + side + "\" height=\"" +
                      side + "\" viewBox=\"0 0 " + side + ' ' + side + "\">\n";
    // The outline is inside the plate; it separates a light plate from a light background.
    const double line = std::max(1.0, std::round(size / 64.0));
    text += rectangle(at.edge + line / 2, at.edge + line / 2, size - 2 * at.edge - line,
                      size - 2 * at.edge - line, size * 0.2,
                      "fill=\"#fafafa\" stroke=\"#d4d4d4\" stroke-width=\"" +
                          QByteArray::number(line) + '"');
    double y = at.top;
    for (const auto& [part, colour] : iconBars(Verdict::clear)) {
        text += rectangle(at.left, y, at.longest * part, at.thickness, at.thickness / 2,
                          "fill=\"" + colour.name().toLatin1() + "\" fill-opacity=\"" +
                              QByteArray::number(colour.alphaF(), 'g', 2) + '"');
        y += at.thickness + at.gap;
    }
    return text + "</svg>\n";
}

QImage image(int size) {
    QImage drawn(size, size, QImage::Format_ARGB32);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    QSvgRenderer(svg(size)).render(&painter);
    return drawn;
}

/// The path of an icon below the root of a theme; creates its folder.
QString place(const QString& root, const QString& folder, const QString& extension) {
    const auto path = root + "/hicolor/" + folder + "/apps";
    if (!QDir().mkpath(path))
        throw std::runtime_error("the folder can't be made: " + path.toStdString());
    return path + "/" + applicationId + "." + extension;
}

void draw(const QString& root) {
    for (const int size : sizes) {
        const auto path = place(root, QString("%1x%1").arg(size), "png");
        if (!image(size).save(path))
            throw std::runtime_error("the icon can't be written: " + path.toStdString());
    }
    QFile scalable(place(root, "scalable", "svg"));
    const auto text = svg(anySize);
    if (!scalable.open(QFile::WriteOnly) || scalable.write(text) != text.size() ||
        !scalable.flush())
        throw std::runtime_error("the icon can't be written: " + scalable.fileName().toStdString());
}

} // namespace

/// draw-icons FOLDER: writes the icons into FOLDER/hicolor.
int main(int count, char* texts[]) {
    try {
        if (count != 2)
            throw std::runtime_error("the folder of the icons must be given");
        draw(QFile::decodeName(texts[1]));
        return EXIT_SUCCESS;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "draw-icons: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
