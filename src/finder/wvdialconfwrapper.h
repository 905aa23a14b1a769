#pragma once
#include "zelmodemslib_export.h"

#include <QObject>
#include <QPointer>
#include <QString>

class QProcess;

/// Runs wvdialconf, the system's own modem search, which writes the dialer's
/// search file ("<work directory>/modems/wvdial.conf.srch"). Running dialers
/// (pppd, wvdial) are stopped first so that the ports are free. The tool's
/// output goes to the log (its error output at critical level); nothing else
/// is reported: the caller reads the file the tool wrote.
class ZELMODEMSLIB_EXPORT WvDialConfWrapper : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(WvDialConfWrapper)

public:
    explicit WvDialConfWrapper(QObject* parent = nullptr);
    ~WvDialConfWrapper() override;

    /// The tool's path, "/usr/bin/wvdialconf". Read when a wrapper is made.
    static QString WVDIAL_COMMAND;

public slots:
    /// Stops pppd and wvdial, runs the tool and waits for it up to `timeout`
    /// milliseconds (-1: without limit). A tool still running then is left
    /// running.
    void start(int timeout);

private slots:
    void wvDialReadyReadStandardError();
    void wvDialReadyReadStandardOutput();

private:
    QPointer<QProcess> process;
};
