#include "wvdialconfwrapper.h"

#include <qt5ext/initconfig.h>
#include <qt5ext/logformat.h>

#include <QByteArray>
#include <QDebug>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

#include <stdlib.h>

namespace {

// The appliance's start-up configuration; its work directory holds the
// modems subsystem's files.
const char INIT_CONFIG[] = "/opt/orvel5zel/etc/zel5.conf";

QString workDir()
{
    return qt5ext::InitConfig(QString::fromLatin1(INIT_CONFIG), false).workDir();
}

// The tool's output as lines: UTF-8 up to a NUL byte, split at line feeds,
// empty lines kept.
QStringList outputLines(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes.constData()).split(QLatin1Char('\n'), Qt::KeepEmptyParts);
}

} // namespace

QString WvDialConfWrapper::WVDIAL_COMMAND = QStringLiteral("/usr/bin/wvdialconf");

WvDialConfWrapper::WvDialConfWrapper(QObject* parent) : QObject(parent), process(new QProcess(this))
{
    process->setInputChannelMode(QProcess::ManagedInputChannel);
    process->setProcessChannelMode(QProcess::SeparateChannels);
    process->setProcessEnvironment(QProcessEnvironment::systemEnvironment());
    process->setProgram(WVDIAL_COMMAND);
    process->setWorkingDirectory(workDir());
    connect(process.data(), &QProcess::readyReadStandardError, this,
            &WvDialConfWrapper::wvDialReadyReadStandardError);
    connect(process.data(), &QProcess::readyReadStandardOutput, this,
            &WvDialConfWrapper::wvDialReadyReadStandardOutput);
}

// The process, a child, goes with the wrapper.
WvDialConfWrapper::~WvDialConfWrapper() = default;

void WvDialConfWrapper::start(int timeout)
{
    // A dialer holds its port: stop every one, whatever it is doing.
    (void)!::system("sudo killall pppd");
    (void)!::system("sudo killall wvdial");

    const QString searchFile = QStringLiteral("%1/modems/wvdial.conf.srch").arg(workDir());
    if (!process)
        return;
    process->setArguments(QStringList() << searchFile);
    process->start(QIODevice::ReadWrite);
    process->waitForFinished(timeout);
    if (process && process->error() == QProcess::FailedToStart)
        qWarning().noquote().nospace() << tr("wvdial") << logtab << process->program() << logtab << process->errorString();
}

void WvDialConfWrapper::wvDialReadyReadStandardError()
{
    if (!process)
        return;
    const QByteArray bytes = process->readAllStandardError();
    qCritical().noquote().nospace() << tr("wvdial error") << logtab << loglist(outputLines(bytes)) << logtab
                          << logbinary(bytes, "UTF-8");
}

void WvDialConfWrapper::wvDialReadyReadStandardOutput()
{
    if (!process)
        return;
    const QByteArray bytes = process->readAllStandardOutput();
    qDebug().noquote().nospace() << tr("wvdial") << logtab << loglist(outputLines(bytes)) << logtab
                       << logbinary(bytes, "UTF-8");
}
