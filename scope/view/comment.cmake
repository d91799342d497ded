# SPDX-License-Identifier: GPL-3.0-or-later
# The comment of a shot or composition archive and its dialog.
target_sources(OvScopeInternal PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/scopeelementcomment.h
    ${CMAKE_CURRENT_LIST_DIR}/scopeelementcomment_p.h
    ${CMAKE_CURRENT_LIST_DIR}/scopeelementcomment.cpp
    ${CMAKE_CURRENT_LIST_DIR}/scopeelementcommentdialog.h
    ${CMAKE_CURRENT_LIST_DIR}/scopeelementcommentdialog_p.h
    ${CMAKE_CURRENT_LIST_DIR}/scopeelementcommentdialog.cpp)
