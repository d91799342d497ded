// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "system.h"

#include <QtCore/QObject>

class SystemPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(System)

public:
    explicit SystemPrivate(System* q);

    static QString userNameFromEnvironment();
    static QString userNameFromPasswd();

private:
    System* const q_ptr;
};
