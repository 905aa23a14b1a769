#pragma once
#include <qt5ext/qt5ext_export.h>
#include <QString>

namespace qt5ext {

// A component's version as the appliance's version registry keeps it:
// the version number text and the build date-time (ISO 8601 text).
// A default-constructed version is invalid.
class QT5EXT_EXPORT AppVersion
{
public:
    AppVersion() = default;
    AppVersion(const QString& version, const QString& buildDateTime);

    bool isValid() const { return !m_version.isEmpty(); }
    QString version() const { return m_version; }
    QString buildDateTime() const { return m_buildDateTime; }

    bool operator==(const AppVersion& other) const
    {
        return m_version == other.m_version && m_buildDateTime == other.m_buildDateTime;
    }
    bool operator!=(const AppVersion& other) const { return !(*this == other); }

private:
    QString m_version;
    QString m_buildDateTime;
};

} // namespace qt5ext
