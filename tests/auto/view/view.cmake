# SPDX-License-Identifier: GPL-3.0-or-later
# Tests of the plot widget, the stripes and the exported scope view.
ovscope_add_test(tst_scopewidget SOURCES tst_scopewidget.cpp scopeviewtestsupport.h LIBS OvScopeInternal)
ovscope_add_test(tst_scopestripeswidget SOURCES tst_scopestripeswidget.cpp scopeviewtestsupport.h LIBS OvScopeInternal)
ovscope_add_test(tst_scopeview SOURCES tst_scopeview.cpp scopeviewtestsupport.h LIBS OvScopeInternal)
