// SPDX-License-Identifier: GPL-3.0-or-later
#include "system.h"
#include "system_p.h"

#include <QtCore/QSysInfo>
#include <QtCore/QtGlobal>

#include <cerrno>
#include <pwd.h>
#include <unistd.h>

#include <vector>

SystemPrivate::SystemPrivate(System* q)
    : QObject(q)
    , q_ptr(q)
{
}

QString SystemPrivate::userNameFromEnvironment()
{
    for (const char* variable : { "USER", "LOGNAME", "USERNAME" }) {
        const QString value = qEnvironmentVariable(variable);
        if (!value.isEmpty())
            return value;
    }
    return QString();
}

QString SystemPrivate::userNameFromPasswd()
{
    // getpwuid_r rather than getpwuid: the library may be asked from any thread.
    long bufferSize = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    if (bufferSize <= 0)
        bufferSize = 1024;
    // The entry may need more room than the system suggests; grow a few times,
    // but never without bound.
    for (int attempt = 0; attempt < 6; ++attempt) {
        std::vector<char> buffer(static_cast<size_t>(bufferSize));
        struct passwd entry;
        struct passwd* result = nullptr;
        const int error = ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &result);
        if (error == ERANGE) {
            bufferSize *= 4;
            continue;
        }
        if (error != 0 || !result || !result->pw_name)
            return QString();
        return QString::fromLocal8Bit(result->pw_name);
    }
    return QString();
}

System::System()
    : QObject(nullptr)
    , d_ptr(new SystemPrivate(this))
{
}

System::~System() = default;

System* System::instance()
{
    static System system;
    return &system;
}

QString System::hostName() const
{
    return QSysInfo::machineHostName();
}

QString System::userName() const
{
    const QString fromEnvironment = SystemPrivate::userNameFromEnvironment();
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return SystemPrivate::userNameFromPasswd();
}
