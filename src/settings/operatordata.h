#pragma once
#include "zelmodemslib_export.h"

#include <QMap>
#include <QMetaType>
#include <QSharedDataPointer>
#include <QString>
#include <QVariantMap>

class OperatorData;
class OperatorDataData;

/// The operator table: entries keyed by mccmnc(), that is MCC * 100 + MNC.
/// The key assumes two-digit MNCs; a three-digit MNC collides with the
/// neighbouring MCC (250/101 and 251/1 both give 25101) and the later entry
/// wins.
typedef QMap<int, OperatorData> MncTable;

/// One mobile operator: its codes, display name, the USSD codes that ask the
/// own number and the balance, the PPP credentials and the init line that
/// defines its packet-data context (AT+CGDCONT=1,"IP","apn").
class ZELMODEMSLIB_EXPORT OperatorData
{
public:
    OperatorData();
    OperatorData(const OperatorData& other);
    OperatorData& operator=(const OperatorData& other);
    ~OperatorData();

    int mcc() const;
    void setMcc(const int& mcc);

    int mnc() const;
    void setMnc(const int& mnc);

    QString name() const;
    void setName(const QString& name);

    QString selfNumberPhone() const;
    void setSelfNumberPhone(const QString& selfNumberPhone);

    /// The own number comes back as an SMS rather than as the USSD reply.
    bool selfNumberFromSms() const;
    void setSelfNumberFromSms(bool selfNumberFromSms);

    QString balancePhone() const;
    void setBalancePhone(const QString& balancePhone);

    QString userName() const;
    void setUserName(const QString& userName);

    QString password() const;
    void setPassword(const QString& password);

    QString modemInitLine() const;
    void setModemInitLine(const QString& modemInitLine);

    /// MCC * 100 + MNC, the table key.
    int mccmnc() const;
    /// Positive MCC and MNC and a name; an operator with MNC 0 is never valid.
    bool isValid() const;

    bool operator==(const OperatorData& other) const;
    bool operator!=(const OperatorData& other) const;

    QVariantMap toMap() const;
    /// Reads the nine keys back; spaces are stripped from "modemInitLine".
    void setMap(const QVariantMap& map);
    static OperatorData fromMap(const QVariantMap& map);

    /// The table as a map keyed "mnc_<key>", and back. Reading skips keys of
    /// another shape and invalid entries with a warning, and files every
    /// entry under its own mccmnc().
    static MncTable mncTableFromMap(const QVariantMap& map);
    static QVariantMap mncTableToMap(const MncTable& table);

private:
    QSharedDataPointer<OperatorDataData> d;
};

Q_DECLARE_METATYPE(OperatorData)

inline MncTable mncTableFromMap(const QVariantMap& map)
{
    return OperatorData::mncTableFromMap(map);
}

inline QVariantMap mncTableToMap(const MncTable& table)
{
    return OperatorData::mncTableToMap(table);
}
