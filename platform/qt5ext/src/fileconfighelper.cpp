#include <qt5ext/fileconfighelper.h>
#include <QSettings>

namespace qt5ext {

FileConfigHelper::FileConfigHelper(const QString& fileName, bool writable)
    : m_fileName(fileName), m_writable(writable)
{
}

FileConfigHelper::~FileConfigHelper() = default;

QString FileConfigHelper::settingsFileName() const
{
    return m_fileName;
}

QVariant FileConfigHelper::value(const QString& key, const QVariant& defaultValue) const
{
    QSettings settings(m_fileName, QSettings::IniFormat);
    return settings.value(key, defaultValue);
}

bool FileConfigHelper::setValue(const QString& key, const QVariant& value)
{
    if (!m_writable)
        return false;
    QSettings settings(m_fileName, QSettings::IniFormat);
    settings.setValue(key, value);
    settings.sync();
    return settings.status() == QSettings::NoError;
}

} // namespace qt5ext
