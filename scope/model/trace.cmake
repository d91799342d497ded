# SPDX-License-Identifier: GPL-3.0-or-later
# Scope trace and the 1-2-5 series helper.
target_sources(OvScopeInternal PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/scopeseries.cpp
    ${CMAKE_CURRENT_LIST_DIR}/scopeseries.h
    ${CMAKE_CURRENT_LIST_DIR}/scopetrace.cpp
    ${CMAKE_CURRENT_LIST_DIR}/scopetrace.h
    ${CMAKE_CURRENT_LIST_DIR}/scopetrace_p.h)
