// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ovsystem_export.h"

#include <QtCore/QObject>
#include <QtCore/QString>

class SystemPrivate;

/*! \brief Facts about the computer the suite runs on and its user. */
class OVSYSTEM_EXPORT System : public QObject
{
    Q_OBJECT

public:
    /*! \brief The one instance of the process; never null. */
    static System* instance();

    ~System() override;

    /*! \brief The computer's host name as the system reports it. */
    QString hostName() const;

    /*! \brief The name of the user running the process.
     *
     * Taken from the environment (USER, LOGNAME, USERNAME, the first that is
     * set and not empty), else from the user database; empty when neither
     * knows it.
     */
    QString userName() const;

private:
    System();

    Q_DECLARE_PRIVATE(System)
    SystemPrivate* const d_ptr;
};
