# SPDX-License-Identifier: GPL-3.0-or-later
# Shared build rules of the OvScope project.

# Warnings and Qt definitions every project target gets.
function(ovscope_target_defaults target)
    target_compile_options(${target} PRIVATE -Wall -Wextra)
    target_compile_definitions(${target} PRIVATE
        QT_NO_KEYWORDS
        QT_NO_CAST_FROM_ASCII
        QT_DISABLE_DEPRECATED_BEFORE=0x060000)
endfunction()

# ovscope_add_platform_library(<Name> SOURCES <files…> HEADERS <public headers…> LIBS <libs…>)
#
# One shared library per platform module. Only HEADERS are installed (into
# include/<Name>); private headers belong in SOURCES. The export header
# <name>_export.h defines <NAME>_EXPORT.
function(ovscope_add_platform_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;LIBS" ${ARGN})
    qt_add_library(${name} SHARED ${ARG_SOURCES} ${ARG_HEADERS})
    add_library(OvScope::${name} ALIAS ${name})
    string(TOLOWER "${name}" lower)
    generate_export_header(${name} BASE_NAME ${name} EXPORT_FILE_NAME ${lower}_export.h)
    set_target_properties(${name} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
    target_include_directories(${name} PUBLIC
        $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>
        $<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/${name}>)
    if(ARG_LIBS)
        target_link_libraries(${name} PUBLIC ${ARG_LIBS})
    endif()
    ovscope_target_defaults(${name})
    install(TARGETS ${name} EXPORT OvScopeTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${name})
    install(FILES ${ARG_HEADERS} "${CMAKE_CURRENT_BINARY_DIR}/${lower}_export.h"
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${name})
endfunction()

# ovscope_add_test(<tst_name> SOURCES <files…> LIBS <libs…> [DATA_DIR] [TIMEOUT <s>] [LABELS <labels…>])
#
# One QTest program registered with CTest. Every test runs offscreen with its
# own HOME and XDG folders, so no real user configuration is read or written
# and tests can run in parallel.
function(ovscope_add_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE Qt6::Test ${ARG_LIBS})
    target_compile_options(${name} PRIVATE -Wall -Wextra)
    target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x060000)
    add_test(NAME ${name} COMMAND ${name})
    set(home "${CMAKE_CURRENT_BINARY_DIR}/home/${name}")
    file(MAKE_DIRECTORY "${home}/.config" "${home}/.local/share" "${home}/.cache" "${home}/runtime")
    file(CHMOD "${home}/runtime" DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${ARG_TIMEOUT}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;HOME=${home};XDG_CONFIG_HOME=${home}/.config;XDG_DATA_HOME=${home}/.local/share;XDG_CACHE_HOME=${home}/.cache;XDG_RUNTIME_DIR=${home}/runtime;LC_ALL=C.UTF-8")
    if(name IN_LIST OVSCOPE_WIDGET_TESTS)
        list(APPEND ARG_LABELS widget)
    endif()
    if(ARG_LABELS)
        set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABELS}")
    endif()
endfunction()

# ovscope_add_benchmark(<bench_name> SOURCES <files…> LIBS <libs…>)
# Google Benchmark programs; never part of the test suite.
function(ovscope_add_benchmark name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE benchmark::benchmark ${ARG_LIBS})
    target_compile_options(${name} PRIVATE -Wall -Wextra)
    target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS)
endfunction()
