# SPDX-License-Identifier: GPL-3.0-or-later
# The plot widget and the stripes of the time analysis.
target_sources(OvScopeInternal PRIVATE
    scopewidget.h scopewidget_p.h scopewidget.cpp
    scopestripeswidget.h scopestripeswidget_p.h scopestripeswidget.cpp
    scopestripesassignmentwidget.h scopestripesassignmentwidget_p.h scopestripesassignmentwidget.cpp)
