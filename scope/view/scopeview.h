// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ovscope_export.h"

#include <QtWidgets/QWidget>

class QHBoxLayout;
class ScopeElementArchive;
class ScopeRepository;
class ScopeShotArchive;

/*! \brief The time-domain view of the scope library, embedded by a host.

    Create it with create(), hand it one element at a time with
    setScopeElement() (a shot archive or a composition archive) and save the
    element's toByteArray() when it emits scopeElementChanged(): every change
    the user makes in the view is written into the shown archive.
*/
class OVSCOPE_EXPORT ScopeView : public QWidget
{
    Q_OBJECT

public:
    explicit ScopeView(QWidget* parent = nullptr);
    ~ScopeView() override;

    /*! \brief A new view with \a parent that finds the shots of compositions
        in \a repository (not owned). */
    static ScopeView* create(QWidget* parent, ScopeRepository* repository);

public Q_SLOTS:
    /*! \brief Shows \a element (a shot or a composition archive). */
    virtual void setScopeElement(ScopeElementArchive* element) = 0;
    /*! \brief Shows the current element again from its archive. */
    virtual void refreshScopeElement() = 0;
    /*! \brief Removes the shown element; the view is empty afterwards. */
    virtual void clearScopeElement() = 0;
    /*! \brief The shown element, or null. */
    virtual ScopeElementArchive* currentScopeElement() = 0;
    /*! \brief The place for the host's own tool buttons. */
    virtual QHBoxLayout* externalButtonLayout() = 0;

Q_SIGNALS:
    /*! \brief The view made \a pWidget (the frequency view) for the host to place. */
    void widgetCreated(ScopeView* pView, QWidget* pWidget);
    /*! \brief The user asks to apply another shot's channel settings to
        \a pScopeShotArchive (null when a composition is shown). */
    void recipeImportRequest(ScopeShotArchive* pScopeShotArchive);
};
