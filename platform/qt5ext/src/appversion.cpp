#include <qt5ext/appversion.h>

namespace qt5ext {

AppVersion::AppVersion(const QString& version, const QString& buildDateTime)
    : m_version(version), m_buildDateTime(buildDateTime)
{
}

} // namespace qt5ext
