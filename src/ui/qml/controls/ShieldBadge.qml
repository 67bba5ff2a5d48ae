// The shield of the brand, with the stripes on it.
import QtQuick

Item {
    id: badge

    property real size: 64
    property bool isAnimated: false

    implicitWidth: size
    implicitHeight: size
    Accessible.ignored: true

    Canvas {
        id: canvas
        anchors.fill: parent
        onPaint: {
            const c = getContext("2d")
            const w = width
            const h = height
            c.reset()
            c.beginPath()
            c.moveTo(w * 0.5, h * 0.03)
            c.bezierCurveTo(w * 0.62, h * 0.12, w * 0.77, h * 0.16, w * 0.9, h * 0.17)
            c.lineTo(w * 0.9, h * 0.47)
            c.bezierCurveTo(w * 0.9, h * 0.72, w * 0.73, h * 0.88, w * 0.5, h * 0.97)
            c.bezierCurveTo(w * 0.27, h * 0.88, w * 0.1, h * 0.72, w * 0.1, h * 0.47)
            c.lineTo(w * 0.1, h * 0.17)
            c.bezierCurveTo(w * 0.23, h * 0.16, w * 0.38, h * 0.12, w * 0.5, h * 0.03)
            c.closePath()
            c.fillStyle = "#FFFFFF"
            c.fill()
            c.lineWidth = Math.max(1.5, w * 0.045)
            c.strokeStyle = Theme.slate
            c.stroke()
        }
    }
    Stripes {
        x: badge.width * 0.29
        y: badge.height * 0.27
        unit: badge.width * 0.035
        isAnimated: badge.isAnimated
    }
}
