# SPDX-License-Identifier: GPL-3.0-or-later
# Plot layout: the geometry of the 10 × 8 division grid.
target_sources(OvScopeInternal PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/scopelayout.cpp
    ${CMAKE_CURRENT_LIST_DIR}/scopelayout.h
    ${CMAKE_CURRENT_LIST_DIR}/scopelayout_p.h)
