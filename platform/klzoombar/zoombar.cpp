// SPDX-License-Identifier: GPL-3.0-or-later
#include "zoombar.h"
#include "zoombar_p.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOption>

#include <algorithm>
#include <cmath>
#include <limits>

using Wide = ZoomBarPrivate::Wide;

ZoomBarPrivate::ZoomBarPrivate(ZoomBar* q)
    : QObject(q)
    , q_ptr(q)
{
}

qint64 ZoomBarPrivate::clampToInt64(Wide value)
{
    if (value < Wide(std::numeric_limits<qint64>::min()))
        return std::numeric_limits<qint64>::min();
    if (value > Wide(std::numeric_limits<qint64>::max()))
        return std::numeric_limits<qint64>::max();
    return qint64(value);
}

void ZoomBarPrivate::applySlider(Wide newLeft, Wide newRight)
{
    if (newLeft > newRight)
        std::swap(newLeft, newRight);
    const Wide lo = minimum;
    const Wide hi = maximum;
    newLeft = std::clamp(newLeft, lo, hi);
    newRight = std::clamp(newRight, lo, hi);
    const Wide least = minimumSliderDifference;
    if (hi - lo <= least) {
        // The range is not wide enough: the slider takes all of it.
        newLeft = lo;
        newRight = hi;
    } else if (newRight - newLeft < least) {
        // Widen about the centre, then push back inside the range.
        const Wide missing = least - (newRight - newLeft);
        newLeft -= missing / 2;
        newRight += missing - missing / 2;
        if (newLeft < lo) {
            newRight += lo - newLeft;
            newLeft = lo;
        }
        if (newRight > hi) {
            newLeft -= newRight - hi;
            newRight = hi;
        }
    }
    commitSlider(qint64(newLeft), qint64(newRight));
}

void ZoomBarPrivate::moveBy(Wide delta)
{
    if (delta < 0)
        delta = std::max(delta, Wide(minimum) - Wide(left));
    else
        delta = std::min(delta, Wide(maximum) - Wide(right));
    if (delta == 0)
        return;
    commitSlider(qint64(Wide(left) + delta), qint64(Wide(right) + delta));
}

void ZoomBarPrivate::commitSlider(qint64 newLeft, qint64 newRight)
{
    Q_Q(ZoomBar);
    const bool leftChanged = newLeft != left;
    const bool rightChanged = newRight != right;
    if (!leftChanged && !rightChanged)
        return;
    const bool movingUp = newLeft > left;
    left = newLeft;
    right = newRight;
    q->update();
    // Listeners that follow one edge each never see the left edge beyond the
    // right one: the edge in the direction of the move is reported first.
    if (movingUp) {
        if (rightChanged)
            Q_EMIT sliderRightChanged(right);
        if (leftChanged)
            Q_EMIT sliderLeftChanged(left);
    } else {
        if (leftChanged)
            Q_EMIT sliderLeftChanged(left);
        if (rightChanged)
            Q_EMIT sliderRightChanged(right);
    }
    Q_EMIT sliderChanged(left, right);
}

void ZoomBarPrivate::setRange(qint64 min, qint64 max)
{
    Q_Q(ZoomBar);
    const bool minChanged = min != minimum;
    const bool maxChanged = max != maximum;
    if (!minChanged && !maxChanged)
        return;
    minimum = min;
    maximum = max;
    q->update();
    if (minChanged)
        Q_EMIT minimumChanged(minimum);
    if (maxChanged)
        Q_EMIT maximumChanged(maximum);
    applySlider(left, right);
}

QRectF ZoomBarPrivate::trackRect() const
{
    Q_Q(const ZoomBar);
    return QRectF(q->contentsRect()).adjusted(0, 1, 0, -1);
}

qreal ZoomBarPrivate::pixelSpan() const
{
    return std::max<qreal>(1, trackRect().width() - 2 * handleWidth);
}

qreal ZoomBarPrivate::xForValue(qint64 value) const
{
    const QRectF track = trackRect();
    const Wide width = rangeWidth(minimum, maximum);
    if (width == 0)
        return track.left() + handleWidth;
    const long double fraction = static_cast<long double>(Wide(value) - Wide(minimum)) / static_cast<long double>(width);
    return track.left() + handleWidth + qreal(fraction * pixelSpan());
}

QRectF ZoomBarPrivate::leftHandleRect() const
{
    const QRectF track = trackRect();
    return QRectF(xForValue(left) - handleWidth, track.top(), handleWidth, track.height());
}

QRectF ZoomBarPrivate::rightHandleRect() const
{
    const QRectF track = trackRect();
    qreal x = xForValue(right);
    // An empty range shows the slider over the whole track.
    if (minimum == maximum)
        x = track.left() + handleWidth + pixelSpan();
    return QRectF(x, track.top(), handleWidth, track.height());
}

QRectF ZoomBarPrivate::spanRect() const
{
    const QRectF l = leftHandleRect();
    const QRectF r = rightHandleRect();
    return QRectF(QPointF(l.right(), l.top()), QPointF(r.left(), r.bottom()));
}

ZoomBarPrivate::Part ZoomBarPrivate::partAt(const QPointF& pos) const
{
    const QRectF track = trackRect();
    if (pos.x() < track.left() || pos.x() >= track.right())
        return Part::None;
    const QRectF l = leftHandleRect();
    const QRectF r = rightHandleRect();
    if (pos.x() >= l.left() && pos.x() < l.right())
        return Part::LeftHandle;
    if (pos.x() >= r.left() && pos.x() < r.right())
        return Part::RightHandle;
    if (pos.x() >= l.right() && pos.x() < r.left())
        return Part::Span;
    return pos.x() < l.left() ? Part::TrackBefore : Part::TrackAfter;
}

Wide ZoomBarPrivate::valueDelta(qreal dx) const
{
    const long double width = static_cast<long double>(rangeWidth(minimum, maximum));
    const long double value = static_cast<long double>(dx) * width / static_cast<long double>(pixelSpan());
    // |value| is at most a few thousand pixels times 2^64, far inside Wide.
    return Wide(value < 0 ? -std::floor(-value + 0.5L) : std::floor(value + 0.5L));
}

ZoomBar::ZoomBar(QWidget* parent)
    : QWidget(parent)
    , d_ptr(new ZoomBarPrivate(this))
{
    Q_D(ZoomBar);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    connect(d, &ZoomBarPrivate::minimumChanged, this, &ZoomBar::minimumChanged);
    connect(d, &ZoomBarPrivate::maximumChanged, this, &ZoomBar::maximumChanged);
    connect(d, &ZoomBarPrivate::sliderLeftChanged, this, &ZoomBar::sliderLeftChanged);
    connect(d, &ZoomBarPrivate::sliderRightChanged, this, &ZoomBar::sliderRightChanged);
    connect(d, &ZoomBarPrivate::sliderChanged, this, &ZoomBar::sliderChanged);
}

ZoomBar::~ZoomBar() = default;

qint64 ZoomBar::minimum() const
{
    Q_D(const ZoomBar);
    return d->minimum;
}

qint64 ZoomBar::maximum() const
{
    Q_D(const ZoomBar);
    return d->maximum;
}

qint64 ZoomBar::sliderLeft() const
{
    Q_D(const ZoomBar);
    return d->left;
}

qint64 ZoomBar::sliderRight() const
{
    Q_D(const ZoomBar);
    return d->right;
}

qint64 ZoomBar::smallStep() const
{
    Q_D(const ZoomBar);
    return d->smallStep;
}

qint64 ZoomBar::largeStep() const
{
    Q_D(const ZoomBar);
    return d->largeStep;
}

qint64 ZoomBar::minimumSliderDifference() const
{
    Q_D(const ZoomBar);
    return d->minimumSliderDifference;
}

void ZoomBar::setMinimum(qint64 minimum)
{
    Q_D(ZoomBar);
    d->setRange(minimum, std::max(minimum, d->maximum));
}

void ZoomBar::setMaximum(qint64 maximum)
{
    Q_D(ZoomBar);
    d->setRange(std::min(maximum, d->minimum), maximum);
}

void ZoomBar::setRange(qint64 minimum, qint64 maximum)
{
    Q_D(ZoomBar);
    d->setRange(minimum, std::max(minimum, maximum));
}

void ZoomBar::setSlider(qint64 left, qint64 right)
{
    Q_D(ZoomBar);
    d->applySlider(left, right);
}

void ZoomBar::setSmallStep(qint64 step)
{
    Q_D(ZoomBar);
    d->smallStep = std::max<qint64>(0, step);
}

void ZoomBar::setLargeStep(qint64 step)
{
    Q_D(ZoomBar);
    d->largeStep = std::max<qint64>(0, step);
}

void ZoomBar::setMinimumSliderDifference(qint64 difference)
{
    Q_D(ZoomBar);
    difference = std::max<qint64>(0, difference);
    if (difference == d->minimumSliderDifference)
        return;
    d->minimumSliderDifference = difference;
    d->applySlider(d->left, d->right);
}

QSize ZoomBar::sizeHint() const
{
    const int height = std::max(20, fontMetrics().height() + 6);
    return QSize(200, height);
}

QSize ZoomBar::minimumSizeHint() const
{
    return QSize(3 * ZoomBarPrivate::handleWidth, 20);
}

void ZoomBar::paintEvent(QPaintEvent*)
{
    Q_D(ZoomBar);
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    const QPalette& palette = option.palette;
    const bool enabled = isEnabled();

    // The groove.
    const QRectF track = d->trackRect();
    painter.setPen(palette.color(QPalette::Mid));
    painter.setBrush(palette.color(QPalette::Window).darker(108));
    painter.drawRect(track.adjusted(0.5, 0.5, -0.5, -0.5));

    // The span between the handles, in the selection colour.
    const QRectF span = d->spanRect();
    QColor spanColor = palette.color(enabled ? QPalette::Highlight : QPalette::Mid);
    spanColor.setAlpha(enabled ? 140 : 90);
    painter.setPen(Qt::NoPen);
    painter.setBrush(spanColor);
    painter.drawRect(span.adjusted(0, 1, 0, -1));

    // The handles, as the style draws buttons, with a grip.
    auto drawHandle = [&](const QRectF& rect, ZoomBarPrivate::Part part) {
        QStyleOptionButton button;
        button.initFrom(this);
        button.rect = rect.toAlignedRect();
        button.state &= ~(QStyle::State_HasFocus | QStyle::State_MouseOver);
        button.state |= QStyle::State_Raised;
        if (d->grab == part)
            button.state |= QStyle::State_Sunken;
        if (d->hover == part && enabled)
            button.state |= QStyle::State_MouseOver;
        style()->drawPrimitive(QStyle::PE_PanelButtonCommand, &button, &painter, this);
        painter.setPen(palette.color(enabled ? QPalette::ButtonText : QPalette::Mid));
        const qreal cx = rect.center().x();
        const qreal top = rect.top() + rect.height() * 0.3;
        const qreal bottom = rect.bottom() - rect.height() * 0.3;
        painter.drawLine(QPointF(cx - 1.5, top), QPointF(cx - 1.5, bottom));
        painter.drawLine(QPointF(cx + 1.5, top), QPointF(cx + 1.5, bottom));
    };
    drawHandle(d->leftHandleRect(), ZoomBarPrivate::Part::LeftHandle);
    drawHandle(d->rightHandleRect(), ZoomBarPrivate::Part::RightHandle);

    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = span.toAlignedRect().adjusted(1, 2, -1, -2);
        focus.backgroundColor = spanColor;
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
}

void ZoomBar::mousePressEvent(QMouseEvent* event)
{
    Q_D(ZoomBar);
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    event->accept();
    const ZoomBarPrivate::Part part = d->partAt(event->position());
    switch (part) {
    case ZoomBarPrivate::Part::LeftHandle:
    case ZoomBarPrivate::Part::RightHandle:
    case ZoomBarPrivate::Part::Span:
        d->grab = part;
        d->pressX = event->position().x();
        d->pressLeft = d->left;
        d->pressRight = d->right;
        if (part == ZoomBarPrivate::Part::Span)
            setCursor(Qt::ClosedHandCursor);
        update();
        break;
    case ZoomBarPrivate::Part::TrackBefore:
        d->moveBy(-Wide(d->largeStep));
        break;
    case ZoomBarPrivate::Part::TrackAfter:
        d->moveBy(Wide(d->largeStep));
        break;
    case ZoomBarPrivate::Part::None:
        break;
    }
}

void ZoomBar::mouseMoveEvent(QMouseEvent* event)
{
    Q_D(ZoomBar);
    if (d->grab == ZoomBarPrivate::Part::None) {
        // Hover feedback only.
        const ZoomBarPrivate::Part part = d->partAt(event->position());
        if (part != d->hover) {
            d->hover = part;
            if (part == ZoomBarPrivate::Part::LeftHandle || part == ZoomBarPrivate::Part::RightHandle)
                setCursor(Qt::SizeHorCursor);
            else if (part == ZoomBarPrivate::Part::Span)
                setCursor(Qt::OpenHandCursor);
            else
                unsetCursor();
            update();
        }
        return;
    }
    event->accept();
    // Measured from the press, so that the grabbed point stays under the
    // pointer and rounding does not add up over many small moves.
    const Wide delta = d->valueDelta(event->position().x() - d->pressX);
    const Wide lo = d->minimum;
    const Wide hi = d->maximum;
    const Wide least = d->minimumSliderDifference;
    const Wide pressLeft = d->pressLeft;
    const Wide pressRight = d->pressRight;
    switch (d->grab) {
    case ZoomBarPrivate::Part::LeftHandle: {
        const Wide upper = std::max(lo, Wide(d->right) - least);
        const Wide newLeft = std::clamp(pressLeft + delta, lo, upper);
        d->commitSlider(qint64(newLeft), d->right);
        break;
    }
    case ZoomBarPrivate::Part::RightHandle: {
        const Wide lower = std::min(hi, Wide(d->left) + least);
        const Wide newRight = std::clamp(pressRight + delta, lower, hi);
        d->commitSlider(d->left, qint64(newRight));
        break;
    }
    case ZoomBarPrivate::Part::Span: {
        if (pressRight - pressLeft > hi - lo) {
            // The range shrank under the gesture; the slider no longer fits.
            d->applySlider(pressLeft + delta, pressRight + delta);
            break;
        }
        Wide shift = delta;
        shift = std::max(shift, lo - pressLeft);
        shift = std::min(shift, hi - pressRight);
        d->commitSlider(qint64(pressLeft + shift), qint64(pressRight + shift));
        break;
    }
    default:
        break;
    }
}

void ZoomBar::mouseReleaseEvent(QMouseEvent* event)
{
    Q_D(ZoomBar);
    if (event->button() != Qt::LeftButton || d->grab == ZoomBarPrivate::Part::None) {
        event->ignore();
        return;
    }
    event->accept();
    const bool wasSpan = d->grab == ZoomBarPrivate::Part::Span;
    d->grab = ZoomBarPrivate::Part::None;
    if (wasSpan) {
        if (d->partAt(event->position()) == ZoomBarPrivate::Part::Span)
            setCursor(Qt::OpenHandCursor);
        else
            unsetCursor();
    }
    update();
}

void ZoomBar::wheelEvent(QWheelEvent* event)
{
    Q_D(ZoomBar);
    const QPoint angle = event->angleDelta();
    const int delta = angle.y() != 0 ? angle.y() : angle.x();
    if (delta == 0) {
        event->ignore();
        return;
    }
    event->accept();
    // As on a scroll bar: turning the wheel away from the user moves towards
    // the minimum. Fine-grained wheels add up to whole notches of 120.
    d->wheelRemainder += delta;
    const int notches = d->wheelRemainder / QWheelEvent::DefaultDeltasPerStep;
    d->wheelRemainder -= notches * QWheelEvent::DefaultDeltasPerStep;
    if (notches != 0)
        d->moveBy(-Wide(notches) * Wide(d->smallStep));
}

void ZoomBar::keyPressEvent(QKeyEvent* event)
{
    Q_D(ZoomBar);
    switch (event->key()) {
    case Qt::Key_Left:
        d->moveBy(-Wide(d->smallStep));
        break;
    case Qt::Key_Right:
        d->moveBy(Wide(d->smallStep));
        break;
    case Qt::Key_PageUp:
        d->moveBy(-Wide(d->largeStep));
        break;
    case Qt::Key_PageDown:
        d->moveBy(Wide(d->largeStep));
        break;
    case Qt::Key_Home:
        d->moveBy(Wide(d->minimum) - Wide(d->left));
        break;
    case Qt::Key_End:
        d->moveBy(Wide(d->maximum) - Wide(d->right));
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
}

void ZoomBar::leaveEvent(QEvent* event)
{
    Q_D(ZoomBar);
    if (d->grab == ZoomBarPrivate::Part::None && d->hover != ZoomBarPrivate::Part::None) {
        d->hover = ZoomBarPrivate::Part::None;
        unsetCursor();
        update();
    }
    QWidget::leaveEvent(event);
}

void ZoomBar::changeEvent(QEvent* event)
{
    Q_D(ZoomBar);
    if (event->type() == QEvent::EnabledChange && !isEnabled()) {
        d->grab = ZoomBarPrivate::Part::None;
        d->hover = ZoomBarPrivate::Part::None;
    }
    QWidget::changeEvent(event);
}
