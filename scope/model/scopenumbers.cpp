// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopenumbers.h"

#include <charconv>
#include <system_error>

namespace {

inline bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// Trims blanks on both sides and one leading "+" (a "+" before a "-" is not a number).
inline bool trimNumber(const char*& begin, const char*& end)
{
    while (begin < end && isBlank(*begin))
        ++begin;
    while (end > begin && isBlank(end[-1]))
        --end;
    if (begin < end && *begin == '+') {
        ++begin;
        if (begin < end && (*begin == '-' || *begin == '+'))
            return false;
    }
    return begin < end;
}

template<typename T>
T toInteger(QByteArrayView text, bool* ok)
{
    const char* begin = text.data();
    const char* end = begin + text.size();
    T value = 0;
    bool valid = begin && trimNumber(begin, end);
    if (valid) {
        const auto [ptr, ec] = std::from_chars(begin, end, value, 10);
        valid = ec == std::errc() && ptr == end;
    }
    if (ok)
        *ok = valid;
    return valid ? value : T(0);
}

} // namespace

namespace ScopeNumbers {

double toDouble(const char* begin, const char* end, bool* ok)
{
    double value = 0.0;
    const bool empty = !begin || begin == end;
    bool valid = begin && trimNumber(begin, end);
    if (!valid && !empty && begin == end) {
        // Only blanks: read as 0 and accepted, like QByteArray::toDouble().
        if (ok)
            *ok = true;
        return 0.0;
    }
    if (valid) {
        const auto [ptr, ec] = std::from_chars(begin, end, value, std::chars_format::general);
        valid = ec == std::errc() && ptr == end;
    }
    if (ok)
        *ok = valid;
    return valid ? value : 0.0;
}

double toDouble(QByteArrayView text, bool* ok)
{
    return toDouble(text.data(), text.data() + text.size(), ok);
}

qint64 toLongLong(QByteArrayView text, bool* ok)
{
    return toInteger<qint64>(text, ok);
}

quint64 toULongLong(QByteArrayView text, bool* ok)
{
    return toInteger<quint64>(text, ok);
}

} // namespace ScopeNumbers
