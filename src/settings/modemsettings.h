#pragma once
#include "zelmodemslib_export.h"

#include "modeminfo.h"
#include "modemsenvs.h"
#include "operatordata.h"

#include <QMap>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVariantList>

// The settings of the modems subsystem for the whole process: the configured
// connections, the order in which they are tried, the status time-out, the
// querying and internet-checking switches, the PPPoE options and the
// operator table.
//
// The values are process-wide statics behind one non-recursive mutex, so
// every ModemSettings object sees the same settings; the object itself holds
// nothing. The configuration service hands them in and takes them out as a
// settings list: maps with "group", "key" and "value".
//
// Port lock files ("<port>.lock") serialise the use of a serial port between
// processes.
class ZELMODEMSLIB_EXPORT ModemSettings
{
public:
    /// Loads the operator table on first use.
    ModemSettings();
    ~ModemSettings();

    int statusTimeout() const;
    void setStatusTimeout(const int& statusTimeout);

    bool ignoreQueryingErrors() const;
    void setIgnoreQueryingErrors(bool ignore);

    bool notQueryModem() const;
    void setNotQueryModem(bool notQuery);

    bool usePppOE() const;
    void setUsePppOE(bool usePppOE);

    QString pppOEPeer() const;
    void setPppOEPeer(const QString& peer);

    bool getSkipCheckInternetConnection() const;
    void setSkipCheckInternetConnection(bool skip);

    QStringList connectionsOrder() const;
    void setConnectionsOrder(const QStringList& order);

    QMap<QString, ModemInfo> modems() const;
    void setModems(const QMap<QString, ModemInfo>& modems);

    /// Data and command ports of the connections named in the connection
    /// order, each port once, in that order.
    QStringList ports() const;

    QVariantList toSettingsList() const;
    /// Drops every connection, then applies the list; bad entries are logged
    /// and skipped.
    void setSettingsList(const QVariantList& list);

    /// The operator table compiled into the library.
    static QString mncTablePath();
    /// Reads a table file (a JSON array of operator entries).
    static MncTable loadMncTable(const QString& path);
    /// Fills the process-wide table from mncTablePath() unless it holds
    /// entries already; an empty result is retried on the next call.
    static void loadMncTable();
    MncTable mncTable() const;
    /// Looks MCC and MNC up; `data` is left untouched when the table has no
    /// such entry. Reads the table without the lock: it must have been loaded.
    bool getOperatorData(int mcc, int mnc, OperatorData& data) const;

    /// Waits (running the caller's events) up to 2 s for the port's lock file
    /// to go, then writes it; does nothing when it stays.
    static void createLockFile(const QString& portName);
    /// True once the lock file is gone, false if it is still there after 2 s.
    static bool waitLockFile(const QString& portName);
    static void removeLockFile(const QString& portName);

    static const QString SECTION;
    static const QString MODEMS_SECTION;
    static const QString CONNECTIONS_ORDER;
    static const QString STATUS_TIMEOUT;
    static const QString IGNORE_QUERYING_ERROR;
    static const QString NOT_QUERY_MODEM;
    static const QString USE_PPPOE;
    static const QString PPPOE_PEER;
    static const QString SKIP_INTERNET_CHECKING;
    /// Names used by the library's callers in their own configuration.
    static const QString MAPPED_IGNORE_QUERYING_ERROR;
    static const QString MAPPED_NOT_QUERY_MODEM;
    static const QString MAPPED_SIM_NUMBER;

private:
    static QStringList _connectionsOrder;
    static int _statusTimeout;
    static bool _ignoreQueryingErrors;
    static bool _notQuery;
    static bool _usePppOE;
    static QString _pppOEPeer;
    static bool _skipCheckInternetConnection;
    static QMap<QString, ModemInfo> _modems;
    static MncTable _mncTable;
    static QMutex _settingsMutex;
};
