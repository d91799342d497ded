# SPDX-License-Identifier: GPL-3.0-or-later
# Measurements of a trace between the markers.
target_sources(OvScopeInternal PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/scopetracecalculator.h
    ${CMAKE_CURRENT_LIST_DIR}/scopetracecalculator_p.h
    ${CMAKE_CURRENT_LIST_DIR}/scopetracecalculator.cpp
)
