# SPDX-License-Identifier: GPL-3.0-or-later
# The frequency analysis widgets: the panel of the "Frequenzanalyse" tab, the
# frequency view with its trace list and trace details, the spectrum chart
# with its axes, marker, scale choice and axis scroll bars.
target_sources(OvScopeInternal PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/axisscrollbar.h
    ${CMAKE_CURRENT_LIST_DIR}/axisscrollbar.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencymarker.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencymarker.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplotadjustmentwidget.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplotadjustmentwidget.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplotadjustmentwidget.ui
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplotaxis.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplotaxis.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplotchart.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplotchart_p.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplotchart.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplottrace.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplottrace.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplotview.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyplotview.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencytracelist.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencytracelist_p.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencytracelist.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencytracewidget.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencytracewidget.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencytracewidget.ui
    ${CMAKE_CURRENT_LIST_DIR}/frequencyview.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyview_p.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyview.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencyview.ui
    ${CMAKE_CURRENT_LIST_DIR}/plotcontroller.h
    ${CMAKE_CURRENT_LIST_DIR}/plotcontroller_p.h
    ${CMAKE_CURRENT_LIST_DIR}/plotcontroller.cpp
    ${CMAKE_CURRENT_LIST_DIR}/scopetofrequencyview.h
    ${CMAKE_CURRENT_LIST_DIR}/scopetofrequencyview_p.h
    ${CMAKE_CURRENT_LIST_DIR}/scopetofrequencyview.cpp
    ${CMAKE_CURRENT_LIST_DIR}/scopetofrequencyview.ui
)
