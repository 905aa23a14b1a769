#pragma once
#include "zelmodemslib_export.h"

#include <QSharedDataPointer>
#include <QString>
#include <QStringList>
#include <QMetaType>
#include <QVariantMap>

class ModemInfoData;

/// One modem and the dial-up connection made through it: the data and command
/// ports, the connection's name, the numbers to dial, the init lines, the line
/// speed, the PPP credentials, the dialer options and the SIM's data.
///
/// A copy-on-write value. Its map form is deliberately asymmetric: toMap()
/// writes the dialer options (dialCommand, newPppd, stupidMode, isdn,
/// modemType), but setMap() does not read them back, because those options
/// are fixed by the library and must not be taken over from stored settings.
/// The IMEI is in neither direction.
class ZELMODEMSLIB_EXPORT ModemInfo
{
public:
    ModemInfo();
    ModemInfo(const ModemInfo& other);
    ModemInfo& operator=(const ModemInfo& other);
    ~ModemInfo();

    QString portName() const;
    void setPortName(const QString& portName);

    QString cmdPortName() const;
    void setCmdPortName(const QString& cmdPortName);

    QString connectionName() const;
    /// An empty name is replaced by generateConnectionName().
    void setConnectionName(const QString& name);
    /// The hook for a generated connection name; it generates none, so a
    /// record given an empty name stays unnamed (and invalid).
    QString generateConnectionName() const;

    QString imei() const;
    void setImei(const QString& imei);

    /// The number to dial: the phone field, else the first of phones, else empty.
    QString phone() const;
    void setPhone(const QString& phone);

    QStringList phones() const;
    void setPhones(const QStringList& phones);

    QStringList initLines() const;
    void setInitLines(const QStringList& initLines);
    void addInitLine(const QString& line);

    int baudrate() const;
    void setBaudrate(const int& baudrate);

    QString userName() const;
    void setUserName(const QString& userName);

    QString password() const;
    void setPassword(const QString& password);

    QString dialCommand() const;
    void setDialCommand(const QString& dialCommand);

    bool newPppd() const;
    void setNewPppd(bool newPppd);

    bool stupidMode() const;
    void setStupidMode(bool stupidMode);

    int isdn() const;
    void setIsdn(const int& isdn);

    QString modemType() const;
    void setModemType(const QString& modemType);

    QString simNumber() const;
    void setSimNumber(const QString& simNumber);

    QString balanceUssd() const;
    void setBalanceUssd(const QString& balanceUssd);

    QString phoneUssd() const;
    void setPhoneUssd(const QString& phoneUssd);

    bool phoneFromSms() const;
    void setPhoneFromSms(bool phoneFromSms);

    /// A connection name, a port and a positive line speed.
    bool isValid() const;

    bool operator==(const ModemInfo& other) const;
    bool operator!=(const ModemInfo& other) const;

    QVariantMap toMap() const;
    void setMap(const QVariantMap& map);
    static ModemInfo fromMap(const QVariantMap& map);

private:
    QSharedDataPointer<ModemInfoData> d;
};

Q_DECLARE_METATYPE(ModemInfo)
