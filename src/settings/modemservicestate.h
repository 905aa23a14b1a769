#pragma once
#include "zelmodemslib_export.h"

#include <QMetaType>
#include <QSharedDataPointer>
#include <QString>
#include <QVariantMap>

namespace zelbus {
class ClientState;
}

class ModemServiceStateData;

/// The state that the modems service publishes on the appliance's bus: its
/// mode, the data connection's state, the SIM balance, the serving cell, the
/// signal level and the map form of the active connection's ModemInfo.
///
/// The service sends toMap() as a JSON object in the state text of its bus
/// client state; a client rebuilds the record with setClientState().
class ZELMODEMSLIB_EXPORT ModemServiceState
{
public:
    /// Both travel as plain ints and a newer service may send values not
    /// named here: the int underlying type makes every int a valid value.
    enum EServiceMode : int {
        SM_STOPPED = 0,
        SM_SEARCHING = 1,
        /// The one mode in which the connection state means something.
        SM_CONNECTION = 2,
        SM_ERROR = 3
    };

    enum EConnectionState : int {
        CS_DISCONNECTED = 0,
        CS_CONNECTING = 1,
        CS_CONNECTED = 2,
        CS_DISCONNECTING = 3
    };

    ModemServiceState();
    ModemServiceState(const ModemServiceState& other);
    ModemServiceState& operator=(const ModemServiceState& other);
    ~ModemServiceState();

    EServiceMode serviceMode() const;
    /// Any mode but SM_CONNECTION also resets the connection state.
    void setServiceMode(const EServiceMode& mode);

    EConnectionState connectionState() const;
    void setConnectionState(const EConnectionState& state);

    double balance() const;
    void setBalance(double balance);

    QString balanceText() const;
    /// NUL characters of the operator's answer are stored as "(0|0)", so that
    /// they stay visible instead of cutting the published text short.
    void setBalanceText(const QString& text);

    QString mcc() const;
    void setMcc(const QString& mcc);

    QString mnc() const;
    void setMnc(const QString& mnc);

    QString lac() const;
    void setLac(const QString& lac);

    QString cid() const;
    void setCid(const QString& cid);

    QVariantMap modemInfo() const;
    void setModemInfo(const QVariantMap& modemInfo);

    int signalLevel() const;
    void setSignalLevel(const int& signalLevel);

    /// The "name" entry of modemInfo; empty when there is none.
    QString activeConnection() const;

    bool operator==(const ModemServiceState& other);
    bool operator!=(const ModemServiceState& other);

    QVariantMap toMap() const;
    void setMap(const QVariantMap& map);
    static ModemServiceState fromMap(const QVariantMap& map);

    /// Takes the state published by the modems service; false (and nothing
    /// changed) for another owner or a state text that is not JSON.
    bool setClientState(const zelbus::ClientState& clientState);

private:
    QSharedDataPointer<ModemServiceStateData> d;
};

Q_DECLARE_METATYPE(ModemServiceState)
