// Registration of the library with the appliance's version registry at load
// time, and its Russian translation under a Russian installation locale.
#include "zelmodemslib.h"

#include <qt5ext/appversionmanager.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class TestRegistration : public QObject
{
    Q_OBJECT

private slots:
    void secondInstance()
    {
        const qt5ext::AppVersion before = ZelModemsLib::version();
        const int versions = qt5ext::AppVersionManager::versions().size();
        const int localisations = qt5ext::AppVersionManager::localisations().count(QStringLiteral("zelmodemslib"));

        {
            ZelModemsLib second;
            Q_UNUSED(second)
        }

        // The version once per process; the localisation every time.
        QCOMPARE(ZelModemsLib::version(), before);
        QCOMPARE(qt5ext::AppVersionManager::versions().size(), versions);
        QCOMPARE(qt5ext::AppVersionManager::localisations().count(QStringLiteral("zelmodemslib")), localisations + 1);
    }

    void russianTranslation_data()
    {
        QTest::addColumn<QString>("context");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("translation");

        QTest::newRow("finder, no devices") << "ModemsFinder" << "There no devices finded" << "Устройства не найдены";
        QTest::newRow("modem, error") << "AtModem" << "Modem said \"ERROR\"" << "Модем ответил \"ERROR\"";
        // Not part of the translated texts.
        QTest::newRow("untranslated") << "QObject" << "Error reading user header data." << "Error reading user header data.";
    }

    void russianTranslation()
    {
        QFETCH(QString, context);
        QFETCH(QString, source);
        QFETCH(QString, translation);

        QVERIFY(qt5ext::AppVersionManager::isLocalisationInstalled(QStringLiteral("zelmodemslib")));
        QCOMPARE(QCoreApplication::translate(qPrintable(context), qPrintable(source)), translation);
    }
};

int main(int argc, char** argv)
{
    // The installation configuration names the locale; the library's
    // translator is installed for it when the application object appears.
    QTemporaryDir dir;
    if (!dir.isValid())
        return 1;
    const QString config = dir.filePath(QStringLiteral("zel5.conf"));
    {
        QFile file(config);
        if (!file.open(QIODevice::WriteOnly))
            return 1;
        file.write("locale=ru_RU\n");
    }
    qputenv("QT5EXT_INITCONFIG", config.toLocal8Bit());

    QCoreApplication app(argc, argv);
    TestRegistration test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_registration.moc"
