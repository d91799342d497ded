# SPDX-License-Identifier: GPL-3.0-or-later
# Tests of the time base widget, trace list, trace controls, binary view,
# settings page and icons.

# The widgets show numbers with the system's decimal point: run a test a
# second time under a locale with a comma as decimal point.
function(viewparts_add_comma_locale_run name)
    set(home "${CMAKE_CURRENT_BINARY_DIR}/home/${name}_de")
    file(MAKE_DIRECTORY "${home}/.config" "${home}/.local/share" "${home}/.cache" "${home}/runtime")
    file(CHMOD "${home}/runtime" DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    add_test(NAME ${name}_de COMMAND ${name})
    set_tests_properties(${name}_de PROPERTIES
        TIMEOUT 300
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;HOME=${home};XDG_CONFIG_HOME=${home}/.config;XDG_DATA_HOME=${home}/.local/share;XDG_CACHE_HOME=${home}/.cache;XDG_RUNTIME_DIR=${home}/runtime;LC_ALL=de_DE.UTF-8")
endfunction()

ovscope_add_test(tst_scopetimewidget SOURCES tst_scopetimewidget.cpp LIBS OvScopeInternal)
viewparts_add_comma_locale_run(tst_scopetimewidget)

ovscope_add_test(tst_scopetracewidget SOURCES tst_scopetracewidget.cpp LIBS OvScopeInternal)
viewparts_add_comma_locale_run(tst_scopetracewidget)

ovscope_add_test(tst_scopetracebinarywidget SOURCES tst_scopetracebinarywidget.cpp LIBS OvScopeInternal)

ovscope_add_test(tst_scopetracelist SOURCES tst_scopetracelist.cpp LIBS OvScopeInternal)
viewparts_add_comma_locale_run(tst_scopetracelist)

ovscope_add_test(tst_scopesettingpage SOURCES tst_scopesettingpage.cpp LIBS OvScopeInternal)

# Links no scope code: it loads the shared library and finds the icons in it.
ovscope_add_test(tst_scoperesources SOURCES tst_scoperesources.cpp LIBS Qt6::Gui)
target_compile_definitions(tst_scoperesources PRIVATE OVSCOPE_LIBRARY_FILE="$<TARGET_FILE:OvScope>")
add_dependencies(tst_scoperesources OvScope)
