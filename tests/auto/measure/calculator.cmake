# SPDX-License-Identifier: GPL-3.0-or-later
# Measurements of a trace between the markers.
ovscope_add_test(tst_scopetracecalculator SOURCES tst_scopetracecalculator.cpp LIBS OvScopeInternal)
# The same program under a locale with a decimal comma.
add_test(NAME tst_scopetracecalculator_de COMMAND tst_scopetracecalculator)
get_test_property(tst_scopetracecalculator ENVIRONMENT calculator_environment)
string(REPLACE "LC_ALL=C.UTF-8" "LC_ALL=de_DE.UTF-8" calculator_environment "${calculator_environment}")
set_tests_properties(tst_scopetracecalculator_de PROPERTIES ENVIRONMENT "${calculator_environment}" TIMEOUT 300)
