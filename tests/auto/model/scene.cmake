# SPDX-License-Identifier: GPL-3.0-or-later
ovscope_add_test(tst_scopemarker SOURCES tst_scopemarker.cpp LIBS OvScopeInternal)
ovscope_add_test(tst_scopequickmeasure SOURCES tst_scopequickmeasure.cpp LIBS OvScopeInternal)
ovscope_add_test(tst_scopescene SOURCES tst_scopescene.cpp LIBS OvScopeInternal)
