// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopetracebinarywidget.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <memory>

class QCheckBox;

namespace Ui {
class ScopeTraceBinaryWidget;
}

class ScopeTraceBinaryWidgetPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeTraceBinaryWidget)

public:
    explicit ScopeTraceBinaryWidgetPrivate(ScopeTraceBinaryWidget* widget);
    ~ScopeTraceBinaryWidgetPrivate() override;

    void setScopeTrace(ScopeTrace* trace);

public Q_SLOTS:
    /*! \brief Reads the trace's binary view flag and mask into the boxes. */
    void updateView();
    /*! \brief Writes the boxes into the trace's binary view flag and mask. */
    void updateData();
    void checkAllCheckBoxes();
    void checkNoCheckBoxes();

public:
    std::unique_ptr<Ui::ScopeTraceBinaryWidget> ui;
    /*! \brief Each check box and the bit it stands for. */
    QHash<QCheckBox*, int> bitOfCheckBox;
    QPointer<ScopeTrace> trace;
    /*! \brief Set while updateView() fills the boxes, so that their toggles
        are not written back half-way. */
    bool updating = false;
    QMetaObject::Connection traceConnection;

private:
    ScopeTraceBinaryWidget* q_ptr = nullptr;
};
