// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QTreeWidget>

class ScopeStripesAssignmentWidgetPrivate;
class ScopeStripesWidget;
class ScopeTrace;

/*! \brief Lists the shots and traces of the scene with a combo box per
    trace that assigns the trace to a stripe, or to none.
*/
class ScopeStripesAssignmentWidget : public QTreeWidget
{
    Q_OBJECT

public:
    explicit ScopeStripesAssignmentWidget(QWidget* parent = nullptr);
    ~ScopeStripesAssignmentWidget() override;

    void setStripesWidget(ScopeStripesWidget* stripesWidget);
    ScopeStripesWidget* stripesWidget() const;

    /*! \brief The item showing \a trace, or null. */
    QTreeWidgetItem* itemOf(const ScopeTrace* trace) const;

private:
    Q_DECLARE_PRIVATE(ScopeStripesAssignmentWidget)
    ScopeStripesAssignmentWidgetPrivate* d_ptr;
};
