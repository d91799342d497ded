# SPDX-License-Identifier: GPL-3.0-or-later
ovscope_add_test(tst_scopeshot SOURCES tst_scopeshot.cpp LIBS OvScopeInternal)
ovscope_add_test(tst_scopetracefilter SOURCES tst_scopetracefilter.cpp LIBS OvScopeInternal)
