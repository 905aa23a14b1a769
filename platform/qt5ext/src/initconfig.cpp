#include <qt5ext/initconfig.h>

#include <QDir>
#include <QFileInfo>
#include <QLocale>

#ifndef QT5EXT_DEFAULT_TRANSLATIONS_DIR
#define QT5EXT_DEFAULT_TRANSLATIONS_DIR "/usr/share/qt5ext/translations"
#endif

namespace qt5ext {

static QString installationNameOf(const QString& nameOrPath)
{
    if (!QDir::isAbsolutePath(nameOrPath))
        return nameOrPath;
    // /opt/<name>/etc/zel5.conf (the file need not exist)
    return QFileInfo(QFileInfo(nameOrPath).path()).path().section(QLatin1Char('/'), -1);
}

QString InitConfig::configFileFor(const QString& nameOrPath)
{
    const QByteArray env = qgetenv("QT5EXT_INITCONFIG");
    if (!env.isEmpty())
        return QString::fromLocal8Bit(env);
    if (QDir::isAbsolutePath(nameOrPath))
        return nameOrPath;
    return QStringLiteral("/opt/%1/etc/zel5.conf").arg(nameOrPath);
}

InitConfig::InitConfig(const QString& nameOrPath, bool writable)
    : FileConfigHelper(configFileFor(nameOrPath), writable), m_name(installationNameOf(nameOrPath))
{
}

InitConfig::~InitConfig() = default;

QString InitConfig::workDir() const
{
    return value(QStringLiteral("workDir"), QStringLiteral("/opt/%1/var").arg(m_name)).toString();
}

QString InitConfig::loggerPath() const
{
    return value(QStringLiteral("loggerPath"), workDir() + QStringLiteral("/log")).toString();
}

QString InitConfig::runPath() const
{
    return value(QStringLiteral("runPath"), workDir() + QStringLiteral("/run")).toString();
}

int InitConfig::keepLogs() const
{
    return value(QStringLiteral("keepLogs"), 7).toInt();
}

bool InitConfig::rotateLogs() const
{
    return value(QStringLiteral("rotateLogs"), true).toBool();
}

int InitConfig::keepLogsHandlers() const
{
    return value(QStringLiteral("keepLogsHandlers"), 5).toInt();
}

bool InitConfig::cleanAnyOldLogs() const
{
    return value(QStringLiteral("cleanAnyOldLogs"), false).toBool();
}

QString InitConfig::versionsPath() const
{
    return value(QStringLiteral("versionsPath"), workDir() + QStringLiteral("/versions")).toString();
}

QString InitConfig::translationsPath() const
{
    const QByteArray env = qgetenv("QT5EXT_TRANSLATIONS_DIR");
    const QString fallback = env.isEmpty() ? QStringLiteral(QT5EXT_DEFAULT_TRANSLATIONS_DIR)
                                           : QString::fromLocal8Bit(env);
    return value(QStringLiteral("translationsPath"), fallback).toString();
}

QString InitConfig::locale() const
{
    return value(QStringLiteral("locale"), QLocale::system().name()).toString();
}

bool InitConfig::setlocale(const QString& locale)
{
    return setValue(QStringLiteral("locale"), locale);
}

} // namespace qt5ext
