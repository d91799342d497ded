// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QtGlobal>

/*! \brief Number parsing for archive values without temporary copies.

    The rules follow QByteArray::toDouble() and toLongLong()/toULongLong()
    in base 10: blanks around the number and a leading "+" are accepted,
    anything else around it makes the text invalid. Invalid or out-of-range
    text gives 0 and \c false.
*/
namespace ScopeNumbers {

double toDouble(const char* begin, const char* end, bool* ok = nullptr);
/*! \brief Reads the field that starts at \a begin and ends before the next
    \a separator or at \a end, as toDouble() would; returns where the field
    ends (the separator or \a end). One pass for plain decimals. */
const char* readField(const char* begin, const char* end, char separator, double* value);
double toDouble(QByteArrayView text, bool* ok = nullptr);
qint64 toLongLong(QByteArrayView text, bool* ok = nullptr);
quint64 toULongLong(QByteArrayView text, bool* ok = nullptr);

} // namespace ScopeNumbers
