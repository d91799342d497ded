// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGui/QIcon>
#include <QtGui/QImage>

/*! \brief The workbench's icons, drawn in code so that every size is sharp:
    an oscilloscope screen with grid, a step response and a sine. */
class WorkbenchIcon
{
public:
    /*! \brief The application icon in the usual sizes. */
    static QIcon icon();
    /*! \brief The application icon as a \a size × \a size image. */
    static QImage render(int size);
    /*! \brief The list icon of a single recording or of a composition. */
    static QIcon kindIcon(bool composition);
};
