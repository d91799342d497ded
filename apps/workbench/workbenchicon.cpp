// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbenchicon.h"

#include <QtCore/QtMath>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPixmap>

namespace {

// A screen in the unit square (0…1); callers scale the painter.
void drawScreen(QPainter& p, qreal size, const QColor& frame, const QColor& screen)
{
    const qreal margin = size * 0.06;
    const QRectF outer(margin, margin, size - 2 * margin, size - 2 * margin);
    p.setPen(Qt::NoPen);
    p.setBrush(frame);
    p.drawRoundedRect(outer, size * 0.14, size * 0.14);
    const QRectF inner = outer.adjusted(size * 0.08, size * 0.08, -size * 0.08, -size * 0.08);
    p.setBrush(screen);
    p.drawRoundedRect(inner, size * 0.05, size * 0.05);
}

QRectF screenRect(qreal size)
{
    const qreal inset = size * 0.06 + size * 0.08;
    return QRectF(inset, inset, size - 2 * inset, size - 2 * inset);
}

void drawGrid(QPainter& p, const QRectF& r, qreal size)
{
    if (size < 24)
        return;
    QPen grid(QColor(0x3d, 0x6b, 0x5a), qMax<qreal>(1.0, size / 64.0));
    grid.setCosmetic(false);
    p.setPen(grid);
    for (int i = 1; i < 4; ++i) {
        const qreal x = r.left() + r.width() * i / 4.0;
        const qreal y = r.top() + r.height() * i / 4.0;
        p.drawLine(QPointF(x, r.top()), QPointF(x, r.bottom()));
        p.drawLine(QPointF(r.left(), y), QPointF(r.right(), y));
    }
}

QPainterPath stepResponse(const QRectF& r)
{
    // Second-order step with overshoot, as on a speed step of a drive.
    QPainterPath path;
    const int points = 64;
    const qreal t0 = 0.22;
    for (int i = 0; i <= points; ++i) {
        const qreal x = qreal(i) / points;
        qreal y = 0.0;
        if (x > t0) {
            const qreal t = (x - t0) * 14.0;
            y = 1.0 - qExp(-0.45 * t) * (qCos(1.6 * t) + 0.28 * qSin(1.6 * t));
        }
        const QPointF point(r.left() + x * r.width(), r.bottom() - (0.18 + 0.6 * y) * r.height());
        if (i == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    return path;
}

QPainterPath sine(const QRectF& r)
{
    QPainterPath path;
    const int points = 64;
    for (int i = 0; i <= points; ++i) {
        const qreal x = qreal(i) / points;
        const qreal y = 0.5 + 0.32 * qSin(2.0 * M_PI * 2.0 * x);
        const QPointF point(r.left() + x * r.width(), r.bottom() - y * r.height());
        if (i == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    return path;
}

}

QImage WorkbenchIcon::render(int size)
{
    size = qBound(8, size, 1024);
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    drawScreen(p, size, QColor(0x2b, 0x3a, 0x4a), QColor(0x0c, 0x1f, 0x18));
    const QRectF r = screenRect(size);
    drawGrid(p, r, size);
    p.setClipRect(r);
    p.setBrush(Qt::NoBrush);
    const qreal width = qMax<qreal>(1.2, size / 18.0);
    p.setPen(QPen(QColor(0xff, 0xc8, 0x3a), width * 0.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawPath(sine(r));
    p.setPen(QPen(QColor(0x4c, 0xf0, 0x8a), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.drawPath(stepResponse(r));
    return image;
}

QIcon WorkbenchIcon::icon()
{
    QIcon result;
    for (int size : {16, 24, 32, 48, 64, 128, 256})
        result.addPixmap(QPixmap::fromImage(render(size)));
    return result;
}

QIcon WorkbenchIcon::kindIcon(bool composition)
{
    QIcon result;
    for (int size : {16, 24, 32}) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter p(&image);
        p.setRenderHint(QPainter::Antialiasing);
        if (composition) {
            // Two screens, one behind the other.
            p.save();
            p.translate(size * 0.18, 0);
            p.scale(0.82, 0.82);
            drawScreen(p, size, QColor(0x6a, 0x7a, 0x8a), QColor(0x1c, 0x3f, 0x30));
            p.restore();
            p.translate(0, size * 0.18);
            p.scale(0.82, 0.82);
        }
        drawScreen(p, size, QColor(0x2b, 0x3a, 0x4a), QColor(0x0c, 0x1f, 0x18));
        const QRectF r = screenRect(size);
        p.setClipRect(r);
        p.setPen(QPen(QColor(0x4c, 0xf0, 0x8a), qMax<qreal>(1.0, size / 14.0)));
        p.setBrush(Qt::NoBrush);
        p.drawPath(stepResponse(r));
        p.end();
        result.addPixmap(QPixmap::fromImage(image));
    }
    return result;
}
