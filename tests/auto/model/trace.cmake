# SPDX-License-Identifier: GPL-3.0-or-later
# Plot layout, 1-2-5 series and scope trace.
ovscope_add_test(tst_scopelayout SOURCES tst_scopelayout.cpp LIBS OvScopeInternal)
ovscope_add_test(tst_scopeseries SOURCES tst_scopeseries.cpp LIBS OvScopeInternal)
ovscope_add_test(tst_scopetrace SOURCES tst_scopetrace.cpp LIBS OvScopeInternal)
ovscope_add_test(tst_scopetracepaint SOURCES tst_scopetracepaint.cpp LIBS OvScopeInternal)
