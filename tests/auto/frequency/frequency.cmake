# SPDX-License-Identifier: GPL-3.0-or-later
# The spectrum routine, its FFT backend and the spectrum of analysed traces.
ovscope_add_test(tst_frequencyfftwtransform SOURCES tst_frequencyfftwtransform.cpp LIBS OvScopeInternal)
ovscope_add_test(tst_frequency SOURCES tst_frequency.cpp LIBS OvScopeInternal)
ovscope_add_test(tst_frequencytrace SOURCES tst_frequencytrace.cpp faketraceinformation.h LIBS OvScopeInternal)
ovscope_add_test(tst_frequencyspectrum SOURCES tst_frequencyspectrum.cpp faketraceinformation.h LIBS OvScopeInternal)
ovscope_add_test(tst_traceinformationimplemention SOURCES tst_traceinformationimplemention.cpp LIBS OvScopeInternal)
