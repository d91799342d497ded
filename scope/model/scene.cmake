# SPDX-License-Identifier: GPL-3.0-or-later
# The scene with its markers and quick-measure cursor.
target_sources(OvScopeInternal PRIVATE
    frequencywindowfunctions.h
    mouseeventhandler.h mouseeventhandler.cpp
    scopemarker.h scopemarker_p.h scopemarker.cpp
    scopequickmeasure.h scopequickmeasure_p.h scopequickmeasure.cpp
    scopescene.h scopescene_p.h scopescene.cpp)
