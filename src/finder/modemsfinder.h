#pragma once
#include "zelmodemslib_export.h"
#include "modeminfo.h"

#include <QFutureWatcher>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

// Searches serial ports for modems.
//
// Each port is probed on the global thread pool (up to 100 at once); the
// finder gathers the modems found as the probes finish, merges the several
// serial interfaces of one USB modem into one record with a data port and a
// command port, and reports through its signals. It lives in the caller's
// thread and needs that thread's event loop to run:
//
//     ModemsFinder finder;
//     connect(&finder, &ModemsFinder::devicesFinded, ...);
//     connect(&finder, &ModemsFinder::finished, ...);
//     finder.start();   ///< every serial port of the system
class ZELMODEMSLIB_EXPORT ModemsFinder : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ModemsFinder)

public:
    /// Turns the finder's debug output on (process-wide) and lets the global
    /// thread pool run 100 probes at once (process-wide too).
    explicit ModemsFinder(QObject* parent = nullptr);
    /// Running probes are not cancelled; their results are dropped.
    ~ModemsFinder() override;

    /// The modems gathered by the last search.
    QList<ModemInfo> modems() const;
    QList<ModemInfo> validModems() const;

signals:
    /// The search ended with at least one modem (the merged list).
    void devicesFinded(QList<ModemInfo> modems);
    /// The port list was empty, or the search ended without a modem.
    void noDevices(QString err);
    /// A search ended (after devicesFinded or noDevices) or was cancelled.
    void finished();
    /// A search is being cancelled.
    void needCancel();

public slots:
    /// Abandons the running search: its probes run to their end on the pool,
    /// but their results are dropped.
    void cancel();
    /// Searches every serial port that the system lists.
    void start();
    /// Searches the named ports (bare names such as ttyUSB0). A search still
    /// running is cancelled first.
    void start(QStringList portNames);

private slots:
    void watcherFinished();

private:
    void prepareUsbModems();

    /// These data members, their types and their order are the class's
    /// layout, part of libzelmodemslib.so.5's binary interface: programs
    /// built against any 5.x allocate ModemsFinder with this size. Never add,
    /// remove or reorder them within version 5.
    QMap<QString, QPointer<QFutureWatcher<ModemInfo>>> watchers;
    QList<ModemInfo> m_modems;
};
