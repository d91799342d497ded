# SPDX-License-Identifier: GPL-3.0-or-later
# Amplitude spectra: the spectrum routine, its FFT backend and the spectrum
# of the analysed traces.
find_package(PkgConfig REQUIRED)
pkg_check_modules(FFTW3 REQUIRED IMPORTED_TARGET GLOBAL fftw3)
target_link_libraries(OvScopeInternal PUBLIC PkgConfig::FFTW3)

target_sources(OvScopeInternal PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/frequency.h
    ${CMAKE_CURRENT_LIST_DIR}/frequency.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencytransform.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencytransform.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencyfftwtransform.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyfftwtransform.cpp
)

target_sources(OvScopeInternal PRIVATE
    ${CMAKE_CURRENT_LIST_DIR}/frequencytrace.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencytrace_p.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencytrace.cpp
    ${CMAKE_CURRENT_LIST_DIR}/frequencyspectrum.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyspectrum_p.h
    ${CMAKE_CURRENT_LIST_DIR}/frequencyspectrum.cpp
)
