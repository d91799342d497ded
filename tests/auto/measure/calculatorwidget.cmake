# SPDX-License-Identifier: GPL-3.0-or-later
# The measurement table.
ovscope_add_test(tst_scopetracecalculatorwidget SOURCES tst_scopetracecalculatorwidget.cpp LIBS OvScopeInternal)
# The same program under a locale with a decimal comma.
add_test(NAME tst_scopetracecalculatorwidget_de COMMAND tst_scopetracecalculatorwidget)
get_test_property(tst_scopetracecalculatorwidget ENVIRONMENT calculatorwidget_environment)
string(REPLACE "LC_ALL=C.UTF-8" "LC_ALL=de_DE.UTF-8" calculatorwidget_environment "${calculatorwidget_environment}")
set_tests_properties(tst_scopetracecalculatorwidget_de PROPERTIES ENVIRONMENT "${calculatorwidget_environment}" TIMEOUT 300)
