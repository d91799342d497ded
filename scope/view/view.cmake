# SPDX-License-Identifier: GPL-3.0-or-later
# The exported scope view, the plot widget and the stripes of the time analysis.
target_sources(OvScopeInternal PRIVATE
    scopeview.h scopeview.cpp
    scopeviewimplementation.h scopeviewimplementation_p.h scopeviewimplementation.cpp scopeviewimplementation.ui
    scopewidget.h scopewidget_p.h scopewidget.cpp
    scopestripeswidget.h scopestripeswidget_p.h scopestripeswidget.cpp
    scopestripesassignmentwidget.h scopestripesassignmentwidget_p.h scopestripesassignmentwidget.cpp)
ovscope_public_headers(scopeview.h)
