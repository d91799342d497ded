// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QWidget>

class QTreeWidget;
class ScopeTrace;
class ScopeTraceCalculator;
class ScopeTraceCalculatorWidgetPrivate;

/*! \brief The measurement table: the values of the selected trace between
    markers A and B as a two-column list (label, value with unit).

    Rows, in this order, with their keys: "time_difference", "value_at_a",
    "value_at_b", "value_difference", "gradient", "average", "integral",
    "minimum", "maximum", "peak", "rms_value", "standard_deviation". */
class ScopeTraceCalculatorWidget : public QWidget
{
    Q_OBJECT
public:
    explicit ScopeTraceCalculatorWidget(QWidget* parent = nullptr);
    ~ScopeTraceCalculatorWidget() override;

    /*! \brief The row keys in display order. */
    static QStringList rowKeys();

    /*! \brief The list that shows the rows. */
    QTreeWidget* treeWidget() const;
    ScopeTraceCalculator* calculator() const;
    /*! \brief The trace whose values are shown, or null. */
    ScopeTrace* scopeTrace() const;
    /*! \brief Column 0 (label) and column 1 (value) of the row \a key. */
    QString labelText(const QString& key) const;
    QString valueText(const QString& key) const;

public Q_SLOTS:
    /*! \brief A marker (0 = A, 1 = B) moved to \a time (ns). */
    void onMarkerTimePositionChanged(quint8 marker, qint64 time);
    /*! \brief Shows the values of \a trace (null for none). */
    void onScopeTraceSelected(ScopeTrace* trace);
    /*! \brief The shown trace changed: the values are read again. */
    void onCurrentScopeTraceChanged();

private:
    Q_DECLARE_PRIVATE(ScopeTraceCalculatorWidget)
    ScopeTraceCalculatorWidgetPrivate* d_ptr;
};
