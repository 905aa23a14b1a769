#include "zelmodemslib.h"
#include "zelmodemslib_version.h"

#include <qt5ext/appversionmanager.h>

#include <QDateTime>
#include <QLocale>

namespace {
const char* const LIBRARY_KEY = "zelmodemslib";
const char* const LIBRARY_VERSION = ZELMODEMSLIB_VERSION_STR;
}

// Order of definition is the order of construction: the version first, then
// the instance that registers it.
qt5ext::AppVersion ZelModemsLib::_version;
static ZelModemsLib zelModemsLibInstance;

QString ZelModemsLib::buildDateTimeIso(const QString& compilerDate, const QString& compilerTime)
{
    // __DATE__ pads single-digit days with a blank ("May  1 2021"); simplifying
    // turns that into the plain "d" the format expects.
    const QString text = QStringLiteral("%1 %2").arg(compilerDate, compilerTime).simplified();
    const QDateTime dateTime = QLocale(QStringLiteral("en")).toDateTime(text, QStringLiteral("MMM d yyyy hh:mm:ss"));
    return dateTime.toString(Qt::ISODate);
}

ZelModemsLib::ZelModemsLib()
{
    if (!_version.isValid()) {
        const qt5ext::AppVersion appVersion(QString::fromLatin1(LIBRARY_VERSION),
                                            buildDateTimeIso(QStringLiteral(__DATE__), QStringLiteral(__TIME__)));
        _version = qt5ext::AppVersionManager::addVersion(QString::fromLatin1(LIBRARY_KEY), appVersion);
    }
    qt5ext::AppVersionManager::addLocalisation(QString::fromLatin1(LIBRARY_KEY));
}

ZelModemsLib::~ZelModemsLib() = default;

qt5ext::AppVersion ZelModemsLib::version()
{
    return _version;
}
