#pragma once
#include <qt5ext/qt5ext_export.h>
#include <QString>
#include <QVariant>

namespace qt5ext {

// A configuration file of key/value pairs (INI syntax, read through
// QSettings). Keys may carry a group as "group/key".
class QT5EXT_EXPORT FileConfigHelper
{
public:
    explicit FileConfigHelper(const QString& fileName, bool writable = false);
    virtual ~FileConfigHelper();

    virtual QString settingsFileName() const;
    virtual QVariant value(const QString& key, const QVariant& defaultValue = QVariant()) const;
    // Stores a value; ignored for a read-only helper. Returns whether it was stored.
    virtual bool setValue(const QString& key, const QVariant& value);

    bool isWritable() const { return m_writable; }

private:
    QString m_fileName;
    bool m_writable;
};

} // namespace qt5ext
