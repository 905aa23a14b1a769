#pragma once
#include "networkoperator.h"
#include "registration.h"
#include "signalmeasures.h"
#include "signalquality.h"
#include "simstatus.h"
#include "storeuse.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

class AtModem;
class Report;

// What stands between a modem and the network, read the standard way (the
// SIM, the registration in each domain, the network, the signal, the
// stores), and how the tool says it: fields for a person, the same values
// in the JSON every command shares, and each problem with its next step.
class ModemState
{
public:
    enum Part {
        ReadSim = 1,
        ReadRegistration = 2,   // and the network and roaming
        ReadSignal = 4,
        ReadStores = 8,
        ReadEverything = ReadSim | ReadRegistration | ReadSignal | ReadStores,
    };

    // One thing that keeps the modem from working, with what to do.
    struct Problem
    {
        QString code;   // stable: "no-sim", "pin-required", "not-registered", ...
        QString text;   // for a person
        QString next;   // the next step; empty when there is none to give
    };

    // Turns numbered errors on (AT+CMEE=1), so that a refusal says why.
    static void askForReasons(AtModem& modem);
    // Reads the parts asked for. The registration is only read for a SIM
    // that is ready: without one the modem cannot register.
    static ModemState read(AtModem& modem, int parts = ReadEverything);

    const zelmodems::SimStatus& sim() const { return m_sim; }
    QString imsi() const { return m_imsi; }
    // The registration that counts: the first registered of LTE, packet
    // and circuit switched, else the circuit switched one.
    zelmodems::Registration registration() const;
    bool isRegistered() const { return registration().isRegistered(); }
    bool isRoaming() const;
    // The access technology: the registration's, else the network's
    // (AT+COPS?); -1 when neither tells.
    int accessTechnology() const;
    const zelmodems::NetworkOperator& network() const { return m_network; }
    const zelmodems::SignalQuality& signal() const { return m_signal; }
    const zelmodems::SignalMeasures& measures() const { return m_measures; }
    const zelmodems::StoreUse& stores() const { return m_stores; }

    // The problems found, worst first; `port` goes into the next steps.
    QList<Problem> problems(const QString& port) const;

    // Fields for a person and the shared JSON objects ("sim",
    // "registration", "network", "signal", "stores") for what was read.
    void reportSim(Report& report) const;
    void reportRegistration(Report& report) const;
    void reportSignal(Report& report) const;
    void reportStores(Report& report) const;
    void reportProblems(Report& report, const QString& port) const;

    // The shared JSON objects on their own (find's list of modems).
    QJsonObject simJson() const { return simJson(m_sim, m_imsi); }
    QJsonObject registrationJson() const;
    QJsonObject signalJson() const;
    QJsonArray problemsJson(const QString& port) const;
    // A SIM's state as the "sim" object (after a code was entered).
    static QJsonObject simJson(const zelmodems::SimStatus& sim, const QString& imsi);

    // "2G (GSM)", "4G (LTE)" for an access technology; empty for -1.
    static QString generation(int accessTechnology);
    // A cell identity or location area code in both notations, one form
    // whatever the modem's padding ("C3D4E5 (12834021)"); "unknown" for -1.
    static QString codeText(qlonglong value);
    // The same in JSON: <name>Hex (upper case, unpadded) and <name>Decimal,
    // null for -1.
    static void insertCode(QJsonObject& json, const QString& name, qlonglong value);
    // The AT+CSQ level for a person: "-73 dBm (good)", or why it is unknown.
    static QString signalText(const zelmodems::SignalQuality& signal);

private:
    int m_parts = 0;
    zelmodems::SimStatus m_sim;
    QString m_imsi;
    zelmodems::Registration m_circuit;
    zelmodems::Registration m_packet;
    zelmodems::Registration m_eps;
    zelmodems::NetworkOperator m_network;
    zelmodems::SignalQuality m_signal;
    zelmodems::SignalMeasures m_measures;
    zelmodems::StoreUse m_stores;
};
