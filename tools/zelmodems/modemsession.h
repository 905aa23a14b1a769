#pragma once
#include "atmodem.h"
#include "dialoguerecorder.h"

#include <QString>

#include <memory>

class CommandLine;
class Report;

// The modem a command talks to: the port of the command line opened at its
// line speed, or a clear failure in the report (no such port, no modem
// answering). The port is closed when the session ends.
class ModemSession
{
public:
    ModemSession() = default;
    ~ModemSession();

    ModemSession(const ModemSession&) = delete;
    ModemSession& operator=(const ModemSession&) = delete;

    // Opens the command line's port; false (and `report` failed) otherwise.
    // Adds the port and the modem's identity to the report's JSON.
    bool open(const CommandLine& commandLine, Report& report);

    AtModem& modem() { return m_modem; }
    QString portName() const { return m_portName; }
    // The device node behind the port name.
    QString devicePath() const { return m_device; }

    // The program that holds `device`, from the UUCP lock file that serial
    // programs (QSerialPort, pppd, minicom) write its pid into: "pid N,
    // name", or empty when no live process holds a lock on it.
    static QString holderOf(const QString& device);

    // The operator codes of the SIM, for commands that need the operator's
    // entry; false (and `report` failed) when the modem cannot tell.
    bool operatorCodes(int& mcc, int& mnc, Report& report);

private:
    // Declared first: it outlives the modem, whose port it relays.
    std::unique_ptr<DialogueRecorder> m_recorder;
    AtModem m_modem;
    QString m_portName;
    QString m_device;
};
