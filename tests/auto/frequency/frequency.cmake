# SPDX-License-Identifier: GPL-3.0-or-later
# The spectrum routine, its FFT backend and the spectrum of analysed traces.
ovscope_add_test(tst_frequencyfftwtransform SOURCES tst_frequencyfftwtransform.cpp LIBS OvScopeInternal)
ovscope_add_test(tst_frequency SOURCES tst_frequency.cpp LIBS OvScopeInternal)
