# SPDX-License-Identifier: GPL-3.0-or-later
# Time base widget, trace list, trace controls, binary view and settings page.
target_sources(OvScopeInternal PRIVATE
    scopesettingpage.h scopesettingpage_p.h scopesettingpage.cpp scopesettingpage.ui)
