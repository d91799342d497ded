// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopenumbers.h"

#include <algorithm>
#include <charconv>
#include <cstring>
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

// Powers of ten that are exact doubles.
constexpr double exactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                       1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Plain decimals ("-12.345") with at most 15 digits are the common case of
// data rows. Mantissa and power of ten are then both exact doubles, so one
// division gives the correctly rounded value, the same as from_chars.
inline bool parseSimpleDecimal(const char* begin, const char* end, double* value)
{
    const char* p = begin;
    const bool negative = p < end && *p == '-';
    if (negative)
        ++p;
    quint64 mantissa = 0;
    int digits = 0;
    int fraction = 0;
    bool point = false;
    for (; p < end; ++p) {
        const unsigned digit = unsigned(*p - '0');
        if (digit < 10) {
            mantissa = mantissa * 10 + digit;
            ++digits;
            fraction += point ? 1 : 0;
        } else if (*p == '.' && !point) {
            point = true;
        } else {
            return false;
        }
    }
    if (digits == 0 || digits > 15)
        return false;
    const double result = double(mantissa) / exactPowersOfTen[fraction];
    *value = negative ? -result : result;
    return true;
}

} // namespace

namespace ScopeNumbers {

double toDouble(const char* begin, const char* end, bool* ok)
{
    double value = 0.0;
    if (begin && begin != end && std::all_of(begin, end, isBlank)) {
        // Only blanks: read as 0 and accepted, like QByteArray::toDouble().
        if (ok)
            *ok = true;
        return 0.0;
    }
    bool valid = begin && trimNumber(begin, end);
    if (valid && !parseSimpleDecimal(begin, end, &value)) {
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

const char* readField(const char* begin, const char* end, char separator, double* value)
{
    // Fast path: "-?digits[.digits]" directly followed by the separator or the end.
    const char* p = begin;
    const bool negative = p < end && *p == '-';
    if (negative)
        ++p;
    quint64 mantissa = 0;
    int digits = 0;
    int fraction = 0;
    bool point = false;
    for (; p < end && digits <= 15; ++p) {
        const unsigned digit = unsigned(*p - '0');
        if (digit < 10) {
            mantissa = mantissa * 10 + digit;
            ++digits;
            fraction += point ? 1 : 0;
        } else if (*p == '.' && !point) {
            point = true;
        } else {
            break;
        }
    }
    if (digits > 0 && digits <= 15 && (p == end || *p == separator)) {
        const double result = double(mantissa) / exactPowersOfTen[fraction];
        *value = negative ? -result : result;
        return p;
    }
    const char* fieldEnd = static_cast<const char*>(std::memchr(p, separator, size_t(end - p)));
    if (!fieldEnd)
        fieldEnd = end;
    *value = toDouble(begin, fieldEnd);
    return fieldEnd;
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
