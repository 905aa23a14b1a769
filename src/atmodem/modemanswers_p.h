#pragma once
// What the driver's queries read out of a modem's answers, apart from the
// dialogue that fetches them: each function takes the answer (or answers)
// exactly as the command loop collected them. Kept apart so that the
// readings can be checked at full speed against any bytes a modem might
// send, without a serial line in between.
#include "smspart.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

namespace modemanswers {

// The first match of `pattern` (a QRegExp) in the answer read as UTF-8;
// false and an empty `value` when there is none.
bool findNumber(const QByteArray& answer, const QString& pattern, QString& value);

// The operator's name: the text between the first and the last quote of
// "+COPS: <mode>,<format>,"<name>"[,<act>]"; false without a quoted text.
bool operatorName(const QByteArray& answer, QString& name);

// The level in dBm of an "<rssi>,<ber>" pair (3GPP TS 27.007 +CSQ): 0 when
// the index is not a number of the scale; indexes from 57 on are not
// multiplied (a huge one cannot overflow) and come out >= 0 too.
int signalLevel(const QString& pair);

// LAC and cell identity of "+CREG: <n>,<stat>,<lac>,<ci>[,...]", quotes
// dropped; false when either is empty.
bool registeredCell(const QByteArray& answer, QString& lac, QString& cid);

// Siemens cell list (^SMONC): nine fields a cell, keyed by channel, each
// kept as "mcc,mnc,cid,lac,rxlev" (cid and lac in decimal). False when the
// answer holds no ":" or fewer than seven fields.
bool siemensCells(const QByteArray& answer, QMap<QString, QStringList>& cells);
// Adds the third column of each line of a ^MONI or ^MONP answer that
// begins with the channel of a listed cell.
void addSiemensLevels(const QByteArray& answer, QMap<QString, QStringList>& cells);
// The cells joined: ";" between cells, "," between fields.
QString joinCells(const QMap<QString, QStringList>& cells);

// The serving cell of a SIMCOM "+CGREG: <n>,<stat>,"<lac>","<ci>"" as a
// cell-list record without MCC, MNC or levels; false without a match.
bool simcomCell(const QByteArray& answer, QString& list);

// A message listing in PDU mode: the index and the decoded PDU of each
// "+CMGL: <index>,..." header followed by its PDU line. An entry whose index
// is not a number that fits is left out (and logged): it must never be read
// or deleted as message 0.
void listedMessages(const QByteArray& answer, QList<int>& indexes, QList<SmsPart>& parts);

} // namespace modemanswers
