// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopetracewidget.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <memory>

class QAction;
class QMenu;
class ScopeTraceBinaryWidget;

namespace Ui {
class ScopeTraceWidget;
}

class ScopeTraceWidgetPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeTraceWidget)

public:
    explicit ScopeTraceWidgetPrivate(ScopeTraceWidget* widget);
    ~ScopeTraceWidgetPrivate() override;

    void setScopeTrace(ScopeTrace* trace);
    /*! \brief One vertical move; \a up selects the direction. */
    void moveVertically(bool up);
    /*! \brief Opens (or raises) the window choosing the bits of the binary view. */
    void showBinaryWidget();

public Q_SLOTS:
    void updateControls();
    void onMoveUpClicked();
    void onMoveDownClicked();
    void onScaleUpClicked();
    void onScaleDownClicked();
    void onGroundToggled(bool checked);
    void onOffToggled(bool checked);
    void onInvertToggled(bool checked);
    void onBinaryClicked();
    void onColorButtonClicked();
    void onScalingEditCommitted();
    void onKindSetDecimal();
    void onKindSetBinary();
    void onKindSetHexadecimal();

public:
    std::unique_ptr<Ui::ScopeTraceWidget> ui;
    QPointer<ScopeTrace> trace;
    /*! \brief Set while updateControls() writes into the controls, so that
        the toggles' own signals do not reach the trace. */
    bool updating = false;
    QMetaObject::Connection traceConnection;
    QMetaObject::Connection shotConnection;

    QMenu* kindMenu = nullptr;
    QAction* decimalAction = nullptr;
    QAction* binaryAction = nullptr;
    QAction* hexadecimalAction = nullptr;
    QAction* selectBitsAction = nullptr;
    QPointer<ScopeTraceBinaryWidget> binaryWidget;

private:
    ScopeTraceWidget* q_ptr = nullptr;
};
