#pragma once
#include "modeminfo.h"

#include <QList>
#include <QString>

// Examines one serial port for a modem: finds a line speed at which it
// answers, climbs to the highest speed at which it still answers an operator
// query, reads the IMEI and the SIM's operator, and describes the dial-up
// connection to make through it.
//
// A port without a modem, a busy or unknown port, or a modem that will not
// tell its operator yields an invalid record. The probe is the unit of work
// of the modem search: one call per port, on a pool thread; everything it
// touches (driver, port, settings) is its own. It blocks until the port has
// been examined and closed, and has no cancellation point.
class PortProbe
{
public:
    ModemInfo operator()(const QString& portName) const;

    // The line speeds tried when climbing, in ascending order.
    static const QList<int>& rateLadder();
};
