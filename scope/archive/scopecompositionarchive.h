// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopeelementarchive.h"

#include <QtCore/QList>

class ScopeShotArchive;
// The meta-object of create(QList<ScopeShotArchive*>) needs the complete type.
Q_MOC_INCLUDE("scopeshotarchive.h")

/*! \brief A named set of shot archives shown together; stores only their IDs. */
class OVSCOPE_EXPORT ScopeCompositionArchive : public ScopeElementArchive
{
    Q_OBJECT

public:
    explicit ScopeCompositionArchive(QObject* parent = nullptr);
    ~ScopeCompositionArchive() override;

    /*! \brief A new, empty composition archive owned by \a parent. */
    static ScopeCompositionArchive* create(QObject* parent);

public Q_SLOTS:
    /*! \brief Starts a new composition on this computer and appends the IDs of
        \a shots. Pass a QList: a braced single pointer, create({shot}),
        would pick the static factory instead. */
    virtual bool create(const QList<ScopeShotArchive*>& shots) = 0;
    /*! \brief The IDs of the shot archives shown together, in order. */
    virtual QList<QByteArray> usedShotIdentifiers() const = 0;
};
