// SPDX-License-Identifier: GPL-3.0-or-later
//
// Draws the toolbar icons of the scope library into PNG files. It runs at
// build time, so the images are vector drawings kept as code rather than
// binary blobs in the repository. Usage: icongen <output folder>
//
// Every icon is drawn on a 24-unit canvas and scaled to its pixel size, so
// that the 16 px variants keep the proportions of the 24 px ones.

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QString>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QRadialGradient>

#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

const QColor outline(40, 48, 60);
const QColor screenDark(22, 44, 36);
const QColor screenLight(40, 78, 62);
const QColor trace(120, 255, 140);
const QColor blueLight(110, 170, 240);
const QColor blueDark(30, 90, 180);
const QColor greenLight(120, 210, 110);
const QColor greenDark(40, 130, 40);

QPen outlinePen(qreal width = 1.2)
{
    QPen pen(outline, width);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCapStyle(Qt::RoundCap);
    return pen;
}

QBrush verticalGradient(const QColor& top, const QColor& bottom, qreal y0 = 0, qreal y1 = 24)
{
    QLinearGradient gradient(0, y0, 0, y1);
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    return gradient;
}

// A filled arrow along the x axis, pointing right, centred on (12, 12).
QPainterPath rightArrow()
{
    QPainterPath path;
    path.moveTo(3, 9);
    path.lineTo(12, 9);
    path.lineTo(12, 4);
    path.lineTo(21, 12);
    path.lineTo(12, 20);
    path.lineTo(12, 15);
    path.lineTo(3, 15);
    path.closeSubpath();
    return path;
}

void drawArrow(QPainter& p, qreal angleDegrees, const QColor& light, const QColor& dark)
{
    p.save();
    p.translate(12, 12);
    p.rotate(angleDegrees);
    p.translate(-12, -12);
    p.setPen(outlinePen());
    p.setBrush(verticalGradient(light, dark, 4, 20));
    p.drawPath(rightArrow());
    p.restore();
}

// An oscilloscope screen with a sine trace inside \a frame.
void drawScreen(QPainter& p, const QRectF& frame)
{
    p.setPen(outlinePen());
    p.setBrush(verticalGradient(QColor(225, 228, 232), QColor(150, 156, 165), frame.top(), frame.bottom()));
    p.drawRoundedRect(frame, 2, 2);
    const QRectF screen = frame.adjusted(2, 2, -2, -2);
    p.setPen(Qt::NoPen);
    p.setBrush(verticalGradient(screenLight, screenDark, screen.top(), screen.bottom()));
    p.drawRect(screen);
    // grid
    p.setPen(QPen(QColor(90, 140, 110), 0.5));
    for (int i = 1; i < 4; ++i) {
        const qreal x = screen.left() + screen.width() * i / 4.0;
        p.drawLine(QPointF(x, screen.top()), QPointF(x, screen.bottom()));
    }
    p.drawLine(QPointF(screen.left(), screen.center().y()), QPointF(screen.right(), screen.center().y()));
    // trace
    QPainterPath wave;
    const int steps = 40;
    for (int i = 0; i <= steps; ++i) {
        const qreal x = screen.left() + 0.5 + (screen.width() - 1) * i / steps;
        const qreal y = screen.center().y() - std::sin(i * 2.0 * M_PI / steps * 1.5) * screen.height() * 0.32;
        if (i == 0)
            wave.moveTo(x, y);
        else
            wave.lineTo(x, y);
    }
    QPen tracePen(trace, 1.3);
    tracePen.setCapStyle(Qt::RoundCap);
    p.setPen(tracePen);
    p.setBrush(Qt::NoBrush);
    p.drawPath(wave);
}

// A magnifying glass with a plus or minus sign; \a horizontal adds a
// double arrow below it (time axis), otherwise a vertical one at its left.
void drawMagnifier(QPainter& p, bool plus, bool horizontal)
{
    const QPointF centre = horizontal ? QPointF(10, 9) : QPointF(14, 10);
    const qreal radius = 6.5;
    // handle
    QPen handle(QColor(90, 60, 30), 3.2);
    handle.setCapStyle(Qt::RoundCap);
    p.setPen(handle);
    p.drawLine(centre + QPointF(4.6, 4.6), centre + QPointF(8.5, 8.5));
    // glass
    QRadialGradient glass(centre - QPointF(2, 2), radius * 1.4);
    glass.setColorAt(0, QColor(255, 255, 255));
    glass.setColorAt(1, QColor(170, 205, 240));
    p.setPen(outlinePen(1.4));
    p.setBrush(glass);
    p.drawEllipse(centre, radius, radius);
    // sign
    QPen sign(QColor(20, 60, 150), 2.0);
    sign.setCapStyle(Qt::FlatCap);
    p.setPen(sign);
    p.drawLine(centre - QPointF(3.5, 0), centre + QPointF(3.5, 0));
    if (plus)
        p.drawLine(centre - QPointF(0, 3.5), centre + QPointF(0, 3.5));
    // axis arrow
    QPen axis(QColor(180, 30, 30), 1.4);
    axis.setCapStyle(Qt::RoundCap);
    axis.setJoinStyle(Qt::RoundJoin);
    p.setPen(axis);
    p.setBrush(Qt::NoBrush);
    if (horizontal) {
        p.drawLine(QPointF(2, 21.5), QPointF(13, 21.5));
        p.drawPolyline(QPolygonF({QPointF(4.5, 19), QPointF(2, 21.5), QPointF(4.5, 24)}));
        p.drawPolyline(QPolygonF({QPointF(10.5, 19), QPointF(13, 21.5), QPointF(10.5, 24)}));
    } else {
        p.drawLine(QPointF(2.5, 3), QPointF(2.5, 21));
        p.drawPolyline(QPolygonF({QPointF(0.5, 5.5), QPointF(2.5, 3), QPointF(4.5, 5.5)}));
        p.drawPolyline(QPolygonF({QPointF(0.5, 18.5), QPointF(2.5, 21), QPointF(4.5, 18.5)}));
    }
}

void drawGear(QPainter& p)
{
    const QPointF c(12, 12);
    const int teeth = 8;
    QPainterPath gear;
    for (int i = 0; i < teeth * 2; ++i) {
        const qreal a0 = (i - 0.5) * M_PI / teeth;
        const qreal a1 = (i + 0.5) * M_PI / teeth;
        const qreal r = (i % 2 == 0) ? 10.5 : 8.0;
        const QPointF p0 = c + QPointF(std::cos(a0) * r, std::sin(a0) * r);
        const QPointF p1 = c + QPointF(std::cos(a1) * r, std::sin(a1) * r);
        if (i == 0)
            gear.moveTo(p0);
        else
            gear.lineTo(p0);
        gear.lineTo(p1);
    }
    gear.closeSubpath();
    QPainterPath hole;
    hole.addEllipse(c, 3.5, 3.5);
    gear = gear.subtracted(hole);
    p.setPen(outlinePen());
    p.setBrush(verticalGradient(QColor(215, 220, 228), QColor(120, 128, 140)));
    p.drawPath(gear);
    // a small trace in the hub marks it as the scope's settings
    p.setPen(QPen(blueDark, 1.0));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(c, 5.2, 5.2);
}

void drawInformation(QPainter& p)
{
    QRadialGradient ball(QPointF(9, 8), 13);
    ball.setColorAt(0, blueLight);
    ball.setColorAt(1, blueDark);
    p.setPen(outlinePen(1.2));
    p.setBrush(ball);
    p.drawEllipse(QPointF(12, 12), 10.5, 10.5);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawEllipse(QPointF(12, 6.5), 2.0, 2.0);
    QPainterPath stem;
    stem.addRoundedRect(QRectF(10.2, 10, 3.6, 9.5), 1, 1);
    p.drawPath(stem);
    p.drawRect(QRectF(8.8, 10, 2, 1.8));
    p.drawRect(QRectF(8.8, 17.7, 6.4, 1.8));
}

void drawImport(QPainter& p)
{
    // a sheet with channel lines
    QPainterPath sheet;
    sheet.moveTo(8, 2);
    sheet.lineTo(18, 2);
    sheet.lineTo(22, 6);
    sheet.lineTo(22, 22);
    sheet.lineTo(8, 22);
    sheet.closeSubpath();
    p.setPen(outlinePen());
    p.setBrush(verticalGradient(Qt::white, QColor(215, 222, 232)));
    p.drawPath(sheet);
    p.setPen(QPen(QColor(200, 60, 60), 1.2));
    p.drawLine(QPointF(12, 9), QPointF(19, 9));
    p.setPen(QPen(QColor(40, 150, 60), 1.2));
    p.drawLine(QPointF(12, 13), QPointF(19, 13));
    p.setPen(QPen(QColor(40, 90, 200), 1.2));
    p.drawLine(QPointF(12, 17), QPointF(19, 17));
    // an arrow coming in from the left
    p.save();
    p.translate(-1, 2);
    p.scale(0.62, 0.62);
    p.translate(0, 4);
    drawArrow(p, 0, greenLight, greenDark);
    p.restore();
}

void drawBinary(QPainter& p)
{
    p.setPen(outlinePen());
    p.setBrush(verticalGradient(Qt::white, QColor(210, 218, 230)));
    p.drawRoundedRect(QRectF(1.5, 3.5, 21, 17), 2, 2);
    QPen pulse(QColor(30, 110, 200), 1.6);
    pulse.setJoinStyle(Qt::MiterJoin);
    p.setPen(pulse);
    p.setBrush(Qt::NoBrush);
    p.drawPolyline(QPolygonF({QPointF(3, 10), QPointF(7, 10), QPointF(7, 6), QPointF(12, 6), QPointF(12, 10),
        QPointF(15, 10), QPointF(15, 6), QPointF(21, 6)}));
    p.setPen(QPen(QColor(200, 60, 40), 1.6));
    p.drawPolyline(QPolygonF({QPointF(3, 18), QPointF(9, 18), QPointF(9, 14), QPointF(17, 14), QPointF(17, 18),
        QPointF(21, 18)}));
}

void drawGround(QPainter& p)
{
    QPen pen(outline, 1.8);
    pen.setCapStyle(Qt::RoundCap);
    p.setPen(pen);
    p.drawLine(QPointF(12, 2), QPointF(12, 11));
    p.drawLine(QPointF(3, 11), QPointF(21, 11));
    p.drawLine(QPointF(6.5, 15.5), QPointF(17.5, 15.5));
    p.drawLine(QPointF(10, 20), QPointF(14, 20));
}

void drawOff(QPainter& p)
{
    // an eye, struck through
    QPainterPath eye;
    eye.moveTo(2, 12);
    eye.quadTo(12, 2, 22, 12);
    eye.quadTo(12, 22, 2, 12);
    p.setPen(outlinePen());
    p.setBrush(verticalGradient(Qt::white, QColor(220, 226, 235)));
    p.drawPath(eye);
    QRadialGradient iris(QPointF(11, 11), 5);
    iris.setColorAt(0, blueLight);
    iris.setColorAt(1, blueDark);
    p.setBrush(iris);
    p.drawEllipse(QPointF(12, 12), 4, 4);
    p.setBrush(outline);
    p.drawEllipse(QPointF(12, 12), 1.5, 1.5);
    QPen strike(QColor(200, 30, 30), 2.4);
    strike.setCapStyle(Qt::RoundCap);
    p.setPen(strike);
    p.drawLine(QPointF(4, 20), QPointF(20, 4));
}

void drawInvert(QPainter& p)
{
    QPen axis(QColor(120, 126, 136), 1.0);
    p.setPen(axis);
    p.drawLine(QPointF(2, 12), QPointF(22, 12));
    QPainterPath upper;
    QPainterPath lower;
    for (int i = 0; i <= 40; ++i) {
        const qreal x = 2 + 20.0 * i / 40;
        const qreal y = std::sin(i * 2 * M_PI / 40) * 7;
        if (i == 0) {
            upper.moveTo(x, 12 - y);
            lower.moveTo(x, 12 + y);
        } else {
            upper.lineTo(x, 12 - y);
            lower.lineTo(x, 12 + y);
        }
    }
    p.setBrush(Qt::NoBrush);
    QPen dashed(QColor(150, 160, 175), 1.3, Qt::DotLine);
    p.setPen(dashed);
    p.drawPath(upper);
    QPen solid(QColor(30, 110, 200), 1.8);
    solid.setCapStyle(Qt::RoundCap);
    p.setPen(solid);
    p.drawPath(lower);
}

void drawColor(QPainter& p)
{
    const QColor colours[] = {QColor(220, 40, 40), QColor(240, 190, 30), QColor(50, 170, 60), QColor(40, 100, 220)};
    const QRectF cells[] = {QRectF(2, 2, 9.5, 9.5), QRectF(12.5, 2, 9.5, 9.5), QRectF(2, 12.5, 9.5, 9.5),
        QRectF(12.5, 12.5, 9.5, 9.5)};
    for (int i = 0; i < 4; ++i) {
        p.setPen(outlinePen(1.0));
        p.setBrush(verticalGradient(colours[i].lighter(140), colours[i], cells[i].top(), cells[i].bottom()));
        p.drawRoundedRect(cells[i], 1.5, 1.5);
    }
}

struct Icon {
    const char* path;
    int size;
    std::function<void(QPainter&)> draw;
};

std::vector<Icon> icons()
{
    return {
        {"ScopeSetting.png", 24, drawGear},
        {"General/Information_16x16.png", 16, drawInformation},
        {"ScopeImport.png", 24, drawImport},
        {"Scope/Scope.png", 16, [](QPainter& p) { drawScreen(p, QRectF(1.5, 3.5, 21, 17)); }},
        {"Scope.png", 24, [](QPainter& p) { drawScreen(p, QRectF(1.5, 3.5, 21, 17)); }},
        {"keyTimeScaleDown.png", 24, [](QPainter& p) { drawMagnifier(p, false, true); }},
        {"keyTimeScaleUp.png", 24, [](QPainter& p) { drawMagnifier(p, true, true); }},
        {"keyMoveLeft.png", 24, [](QPainter& p) { drawArrow(p, 180, blueLight, blueDark); }},
        {"keyMoveRight.png", 24, [](QPainter& p) { drawArrow(p, 0, blueLight, blueDark); }},
        {"Scope/TraceMoveUp.png", 16, [](QPainter& p) { drawArrow(p, -90, greenLight, greenDark); }},
        {"Scope/TraceMoveDown.png", 16, [](QPainter& p) { drawArrow(p, 90, greenLight, greenDark); }},
        {"Scope/TraceScaleUp.png", 16, [](QPainter& p) { drawMagnifier(p, true, false); }},
        {"Scope/TraceScaleDown.png", 16, [](QPainter& p) { drawMagnifier(p, false, false); }},
        {"Scope/TraceGround.png", 16, drawGround},
        {"Scope/TraceOff.png", 16, drawOff},
        {"Scope/TraceInvert.png", 16, drawInvert},
        {"Scope/TraceBinary.png", 16, drawBinary},
        {"Scope/TraceColor.png", 16, drawColor},
    };
}

} // namespace

int main(int argc, char** argv)
{
    // Painting needs a GUI application; no window is ever shown.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() != 2) {
        std::fprintf(stderr, "usage: icongen <output folder>\n");
        return 2;
    }
    const QDir out(args.at(1));
    for (const Icon& icon : icons()) {
        QImage image(icon.size, icon.size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(icon.size / 24.0, icon.size / 24.0);
        icon.draw(painter);
        painter.end();
        const QString file = out.filePath(QString::fromLatin1(icon.path));
        QDir().mkpath(QFileInfo(file).absolutePath());
        if (!image.save(file, "PNG")) {
            std::fprintf(stderr, "icongen: cannot write %s\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
