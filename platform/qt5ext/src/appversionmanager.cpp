#include <qt5ext/appversionmanager.h>
#include <qt5ext/initconfig.h>

#include <QCoreApplication>
#include <QLocale>
#include <QMutex>
#include <QMutexLocker>
#include <QSet>
#include <QTranslator>

namespace qt5ext {

namespace {

struct Registry
{
    QMutex mutex;
    QMap<QString, AppVersion> versions;
    QStringList localisations;
    QStringList pending;          // waiting for the application object
    QSet<QString> installed;
};

Registry& registry()
{
    static Registry r;
    return r;
}

QString installationName()
{
    return QStringLiteral("orvel5zel");
}

// Must run with the registry unlocked: QTranslator loading may log.
bool installTranslation(const QString& name)
{
    const InitConfig config(installationName(), false);
    auto* translator = new QTranslator(QCoreApplication::instance());
    const QLocale locale(config.locale());
    if (!translator->load(locale, name, QStringLiteral("_"), config.translationsPath())) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

void installPending()
{
    QStringList names;
    {
        QMutexLocker lock(&registry().mutex);
        names.swap(registry().pending);
    }
    for (const QString& name : qAsConst(names)) {
        if (installTranslation(name)) {
            QMutexLocker lock(&registry().mutex);
            registry().installed.insert(name);
        }
    }
}

} // namespace

AppVersion AppVersionManager::addVersion(const QString& key, const AppVersion& version)
{
    QMutexLocker lock(&registry().mutex);
    registry().versions.insert(key, version);
    return registry().versions.value(key);
}

AppVersion AppVersionManager::version(const QString& key)
{
    QMutexLocker lock(&registry().mutex);
    return registry().versions.value(key);
}

QMap<QString, AppVersion> AppVersionManager::versions()
{
    QMutexLocker lock(&registry().mutex);
    return registry().versions;
}

void AppVersionManager::addLocalisation(const QString& name)
{
    {
        QMutexLocker lock(&registry().mutex);
        registry().localisations.append(name);
        if (registry().installed.contains(name) || registry().pending.contains(name))
            return;
        registry().pending.append(name);
    }
    if (QCoreApplication::instance())
        installPending();
}

QStringList AppVersionManager::localisations()
{
    QMutexLocker lock(&registry().mutex);
    return registry().localisations;
}

bool AppVersionManager::isLocalisationInstalled(const QString& name)
{
    QMutexLocker lock(&registry().mutex);
    return registry().installed.contains(name);
}

} // namespace qt5ext

// Libraries register while the process loads, before main() creates the
// application object; their translators are installed once it exists.
static void qt5extInstallPendingTranslations()
{
    qt5ext::installPending();
}
Q_COREAPP_STARTUP_FUNCTION(qt5extInstallPendingTranslations)
