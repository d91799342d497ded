// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer entry points around one pipeline of fuzzpipelines.h: a failed
// check aborts, so that libFuzzer keeps the input.
#pragma once

#include "fuzzpipelines.h"

#include <QtCore/QStandardPaths>
#include <QtGui/QGuiApplication>

#include <cstdio>
#include <cstdlib>

#define OVSCOPE_FUZZ_TARGET(pipeline)                                                     \
    extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)                          \
    {                                                                                     \
        /* The model reads colours and settings: an offscreen application */             \
        /* that never touches the user's own configuration. */                           \
        qputenv("QT_QPA_PLATFORM", "offscreen");                                          \
        QStandardPaths::setTestModeEnabled(true);                                         \
        static QGuiApplication* application = new QGuiApplication(*argc, *argv);          \
        Q_UNUSED(application);                                                            \
        return 0;                                                                         \
    }                                                                                     \
    extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)               \
    {                                                                                     \
        const QByteArray failure =                                                        \
            pipeline(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));   \
        if (!failure.isEmpty()) {                                                         \
            std::fprintf(stderr, "check failed: %s\n", failure.constData());              \
            std::abort();                                                                 \
        }                                                                                 \
        return 0;                                                                         \
    }
