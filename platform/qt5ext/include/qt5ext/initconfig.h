#pragma once
#include <qt5ext/fileconfighelper.h>
#include <QStringList>

namespace qt5ext {

// The appliance's installation configuration ("zel5.conf").
//
// Constructed either with an installation name ("orvel5zel": the file is
// /opt/<name>/etc/zel5.conf) or with the configuration file's absolute path.
// The environment variable QT5EXT_INITCONFIG, when set, names the file to
// read instead (tests and development machines have no /opt installation).
//
// Keys read from the file, all optional:
//   workDir           default /opt/<name>/var
//   loggerPath        default <workDir>/log
//   runPath           default <workDir>/run
//   versionsPath      default <workDir>/versions
//   translationsPath  default: the translations directory of this build
//   keepLogs (int, default 7), rotateLogs (bool, true),
//   keepLogsHandlers (int, 5), cleanAnyOldLogs (bool, false),
//   locale            default: the system locale's name
class QT5EXT_EXPORT InitConfig : public FileConfigHelper
{
public:
    InitConfig(const QString& nameOrPath, bool writable);
    ~InitConfig() override;

    virtual QString workDir() const;
    virtual QString loggerPath() const;
    virtual QString runPath() const;
    virtual int keepLogs() const;
    virtual bool rotateLogs() const;
    virtual int keepLogsHandlers() const;
    virtual bool cleanAnyOldLogs() const;
    virtual QString versionsPath() const;
    virtual QString translationsPath() const;
    virtual QString locale() const;
    virtual bool setlocale(const QString& locale);

    // The installation name ("orvel5zel").
    QString installationName() const { return m_name; }

    static QString configFileFor(const QString& nameOrPath);

private:
    QString m_name;
};

} // namespace qt5ext
