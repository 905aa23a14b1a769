#pragma once
// Runs the zelmodems program as a user does and hands back what it printed:
// exit status, standard output, standard error, the output read as JSON.
#include "ownlink.h"
#include "simmodem.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QtTest>

#include <memory>

namespace clitest {

struct Result
{
    int exitCode = -1;
    bool finished = false;
    QString out;
    QString err;

    // Standard output as a JSON object; `ok` false when it is not one.
    QJsonObject json(bool* ok = nullptr) const
    {
        QJsonParseError error;
        const QJsonDocument doc = QJsonDocument::fromJson(out.toUtf8(), &error);
        if (ok)
            *ok = error.error == QJsonParseError::NoError && doc.isObject();
        return doc.object();
    }
    // For failure messages of the tests.
    QByteArray describe() const
    {
        return QStringLiteral("exit %1\n--- stdout\n%2--- stderr\n%3").arg(exitCode).arg(out, err).toUtf8();
    }
};

inline QProcessEnvironment environment()
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    // English messages whatever the machine's language; UTF-8 arguments.
    env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    env.remove(QStringLiteral("QT_LOGGING_RULES"));
    return env;
}

// Every JSON output the tests make is checked against the tool's JSON
// Schema (with Debian's python3-jsonschema): a key that changes its name
// or type between commands or makes fails the test that produced it.
inline void checkSchema(const QStringList& args, const QString& out)
{
    QProcess check;
    check.start(QStringLiteral("python3"), {QStringLiteral(JSON_CHECK_SCRIPT), QStringLiteral(JSON_SCHEMA_PATH)});
    if (!check.waitForStarted(10000)) {
        QTest::qFail("cannot start python3 for the JSON Schema check", __FILE__, __LINE__);
        return;
    }
    check.write(out.toUtf8());
    check.closeWriteChannel();
    check.waitForFinished(30000);
    if (check.exitStatus() != QProcess::NormalExit || check.exitCode() != 0) {
        const QByteArray why = "zelmodems " + args.join(QLatin1Char(' ')).toUtf8()
                             + ": its JSON does not follow the schema:\n" + check.readAllStandardOutput()
                             + check.readAllStandardError();
        QTest::qFail(why.constData(), __FILE__, __LINE__);
    }
}

// `outputFile`: where standard output goes instead (/dev/full, say).
inline Result run(const QStringList& args, int timeoutMs = 30000,
                  const QProcessEnvironment& env = environment(), const QString& outputFile = QString())
{
    QProcess process;
    process.setProcessEnvironment(env);
    if (!outputFile.isEmpty())
        process.setStandardOutputFile(outputFile);
    process.start(QStringLiteral(ZELMODEMS_PATH), args);
    Result result;
    if (!process.waitForStarted(10000))
        return result;
    result.finished = process.waitForFinished(timeoutMs);
    if (!result.finished) {
        process.kill();
        process.waitForFinished(2000);
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    if (args.contains(QStringLiteral("--json")) && !result.out.isEmpty())
        checkSchema(args, result.out);
    return result;
}

// A started simulated modem of `make`, or null (the test then fails).
inline std::unique_ptr<zelmodems::sim::SimModem> startModem(const zelmodems::sim::Profile& profile)
{
    auto modem = std::make_unique<zelmodems::sim::SimModem>(profile);
    QString error;
    if (!modem->start(&error) || !zmltest::giveOwnLink(*modem)) {
        qWarning("cannot start a simulated modem: %s", qPrintable(error));
        return nullptr;
    }
    return modem;
}

inline std::unique_ptr<zelmodems::sim::SimModem> startModem(zelmodems::sim::Make make)
{
    return startModem(zelmodems::sim::Profile::forMake(make));
}

} // namespace clitest
