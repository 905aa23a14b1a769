#pragma once
#include <qt5ext/appversion.h>
#include <QMap>
#include <QStringList>

namespace qt5ext {

// The process-wide registry of component versions and translations.
//
// addLocalisation(name) loads "<name>_<locale>.qm" from the translations
// directory of the installation configuration (InitConfig::translationsPath)
// for the configured locale and installs it into the application. Components
// register while the process loads its libraries, before QCoreApplication
// exists; such translators are installed as soon as the application object
// is created.
class QT5EXT_EXPORT AppVersionManager
{
public:
    // Registers (or replaces) the version of `key`; returns what the registry keeps.
    static AppVersion addVersion(const QString& key, const AppVersion& version);
    static AppVersion version(const QString& key);
    static QMap<QString, AppVersion> versions();

    static void addLocalisation(const QString& name);
    // Names registered through addLocalisation, once per call.
    static QStringList localisations();
    // Whether a translation file of `name` was found and installed.
    static bool isLocalisationInstalled(const QString& name);
};

} // namespace qt5ext
