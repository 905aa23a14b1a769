#pragma once
// Collects the messages that the code under test logs, with their level and
// source context, while an instance lives. Messages from any thread are kept.
#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QtGlobal>

class LogCapture
{
public:
    struct Entry
    {
        QtMsgType type;
        QString message;
        QString file;
        QString function;
    };

    LogCapture()
    {
        QMutexLocker lock(&mutex());
        current() = this;
        m_previous = qInstallMessageHandler(&LogCapture::handler);
    }

    ~LogCapture()
    {
        QMutexLocker lock(&mutex());
        qInstallMessageHandler(m_previous);
        current() = nullptr;
    }

    QVector<Entry> entries() const
    {
        QMutexLocker lock(&mutex());
        return m_entries;
    }

    QStringList messages(QtMsgType type) const
    {
        QStringList result;
        for (const Entry& entry : entries()) {
            if (entry.type == type)
                result.append(entry.message);
        }
        return result;
    }

    void clear()
    {
        QMutexLocker lock(&mutex());
        m_entries.clear();
    }

private:
    static void handler(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        QMutexLocker lock(&mutex());
        if (current()) {
            current()->m_entries.append({type, message, QString::fromUtf8(context.file),
                                         QString::fromUtf8(context.function)});
        }
    }

    static QMutex& mutex()
    {
        static QMutex m;
        return m;
    }

    static LogCapture*& current()
    {
        static LogCapture* c = nullptr;
        return c;
    }

    QtMessageHandler m_previous = nullptr;
    QVector<Entry> m_entries;
};
