#pragma once
// Small file helpers for tests that run external programs.
#include <QByteArray>
#include <QFile>
#include <QFileDevice>
#include <QString>

namespace zmltest {

// Writes an executable shell script with `body` after the "#!/bin/sh" line.
inline bool writeScript(const QString& path, const QByteArray& body)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    file.write("#!/bin/sh\n" + body);
    file.close();
    return file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

// The file's contents; empty when it cannot be read.
inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace zmltest
