# SPDX-License-Identifier: GPL-3.0-or-later
# The frequency analysis widgets: panel, frequency view, trace list and
# details, chart with its series, axes, marker and axis scroll bars.
ovscope_add_test(tst_axisscrollbar SOURCES tst_axisscrollbar.cpp LIBS OvScopeInternal)
ovscope_add_test(tst_frequencyplottrace SOURCES tst_frequencyplottrace.cpp faketraceinformation.h LIBS OvScopeInternal)
ovscope_add_test(tst_frequencyplotchart SOURCES tst_frequencyplotchart.cpp faketraceinformation.h LIBS OvScopeInternal)
ovscope_add_test(tst_frequencyview SOURCES tst_frequencyview.cpp faketraceinformation.h LIBS OvScopeInternal)
ovscope_add_test(tst_scopetofrequencyview SOURCES tst_scopetofrequencyview.cpp faketraceinformation.h LIBS OvScopeInternal)
