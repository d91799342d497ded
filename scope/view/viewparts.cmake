# SPDX-License-Identifier: GPL-3.0-or-later
# Time base widget, trace list, trace controls, binary view and settings page.
target_sources(OvScopeInternal PRIVATE
    scopetimewidget.h scopetimewidget_p.h scopetimewidget.cpp scopetimewidget.ui
    scopetracelist.h scopetracelist_p.h scopetracelist.cpp
    scopetracewidget.h scopetracewidget_p.h scopetracewidget.cpp scopetracewidget.ui
    scopetracebinarywidget.h scopetracebinarywidget_p.h scopetracebinarywidget.cpp scopetracebinarywidget.ui)
target_sources(OvScopeInternal PRIVATE
    scopesettingpage.h scopesettingpage_p.h scopesettingpage.cpp scopesettingpage.ui)
