# SPDX-License-Identifier: GPL-3.0-or-later
# Recordings in memory: the shot, its loading, and the trace filter.
target_sources(OvScopeInternal PRIVATE
    scopenumbers.h scopenumbers.cpp
    scopeshot.h scopeshot_p.h scopeshot.cpp
    scopetracefilter.h scopetracefilter_p.h scopetracefilter.cpp)
