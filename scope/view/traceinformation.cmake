# SPDX-License-Identifier: GPL-3.0-or-later
# The handle through which the frequency analysis sees a time-domain trace.
target_sources(OvScopeInternal PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/traceinformation.h
    ${CMAKE_CURRENT_LIST_DIR}/traceinformation.cpp
    ${CMAKE_CURRENT_LIST_DIR}/traceinformationimplemention.h
    ${CMAKE_CURRENT_LIST_DIR}/traceinformationimplemention.cpp
)
