# SPDX-License-Identifier: GPL-3.0-or-later
# The measurement table.
target_sources(OvScopeInternal PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/scopetracecalculatorwidget.h
    ${CMAKE_CURRENT_LIST_DIR}/scopetracecalculatorwidget_p.h
    ${CMAKE_CURRENT_LIST_DIR}/scopetracecalculatorwidget.cpp
)
