#pragma once
#include <qt5ext/qt5ext_export.h>
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTextStream>
#include <QVariant>

// Log formatters of the appliance. Items of one log line are separated by
// `logtab` (a stream manipulator that writes one tab):
//
//     qCDebug(cat) << "command" << logtab << answer;
//
// The other formatters turn values into one-line text fit for a log.

// Writes a tab into the stream (usable with QDebug and QTextStream).
QT5EXT_EXPORT QTextStream& logtab(QTextStream& stream);

// Raw bytes as readable text: decoded with `codecName` (Latin-1 when null or
// unknown); CR, LF and TAB shown as \r, \n, \t, other control characters as
// \xHH, so that line ends and binary garbage stay visible in one log line.
QT5EXT_EXPORT QString logbinary(const QByteArray& data, const char* codecName = nullptr);

// A list as [item1, item2, ...], each item quoted.
QT5EXT_EXPORT QString loglist(const QStringList& list);

// A variant as compact JSON-like text (maps and lists recursively).
QT5EXT_EXPORT QString logvariant(const QVariant& value);
