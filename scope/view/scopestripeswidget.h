// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QList>
#include <QtWidgets/QWidget>

class ScopeScene;
class ScopeShot;
class ScopeStripesWidgetPrivate;
class ScopeWidget;
class ZoomBar;

namespace KlIniParser {
class IniSection;
}

/*! \brief The stripes of the time-domain view: up to five plot widgets
    stacked in a vertical splitter, all sharing one scene and following the
    view's zoom bar.
*/
class ScopeStripesWidget : public QWidget
{
    Q_OBJECT

public:
    /*! \brief More stripes than this are refused. */
    static constexpr int maximumStripeCount = 5;

    explicit ScopeStripesWidget(QWidget* parent = nullptr);
    ~ScopeStripesWidget() override;

    /*! \brief A new stripe below the others, showing the zoom bar's window;
        null when five stripes exist already. */
    ScopeWidget* addStripe();
    /*! \brief The plot widgets from top to bottom. */
    QList<ScopeWidget*> scopeWidgets() const;

    ScopeScene* scene() const;
    void setScene(ScopeScene* scene);
    ZoomBar* zoomBar() const;
    void setZoomBar(ZoomBar* zoomBar);

    /*! \brief Builds the stripes of a composition from the "ScopeStripe_"
        entries of \a sceneSection (null or without entries: one stripe with
        every trace of \a shots) and gives every trace of \a shots the display
        settings stored for it. Traces are identified by their shot's archive
        ID and their channel number. */
    void setStripeLayout(const KlIniParser::IniSection* sceneSection, const QList<ScopeShot*>& shots);
    /*! \brief Writes the stripes (names and traces) and the display settings
        of every trace of \a shots into \a sceneSection, replacing the
        entries written before. */
    void writeStripeLayout(KlIniParser::IniSection* sceneSection, const QList<ScopeShot*>& shots) const;

    /*! \brief Deletes every plot widget at once. */
    void clear();

Q_SIGNALS:
    /*! \brief A stripe was added or removed, or a stripe's traces changed;
        always delivered through the event loop. */
    void scopeStripesChanged();

private:
    Q_DECLARE_PRIVATE(ScopeStripesWidget)
    ScopeStripesWidgetPrivate* d_ptr;
};
