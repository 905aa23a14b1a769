#pragma once
#include <QList>
#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace zmltest {

// Records the messages logged while it lives, from every thread, and passes
// them on to the previous handler as far as `echo` says (a search logs
// thousands of debug lines, more than Qt Test prints).
class LogRecorder
{
public:
    enum class Echo { All, NoDebug, Nothing };

    struct Entry
    {
        QtMsgType type;
        QString category;
        QString text;
    };

    explicit LogRecorder(Echo echo = Echo::All) : m_echo(echo)
    {
        instance() = this;
        m_previous = qInstallMessageHandler(&LogRecorder::handle);
    }
    ~LogRecorder()
    {
        qInstallMessageHandler(m_previous);
        instance() = nullptr;
    }
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    // Messages of any level in `category` whose text contains `fragment`.
    QList<Entry> find(const QString& category, const QString& fragment) const
    {
        QMutexLocker lock(&m_mutex);
        QList<Entry> found;
        for (const Entry& e : m_entries) {
            if (e.category == category && e.text.contains(fragment))
                found << e;
        }
        return found;
    }
    // Messages of `type` in `category` whose text contains `fragment`.
    QStringList find(QtMsgType type, const QString& category, const QString& fragment) const
    {
        QMutexLocker lock(&m_mutex);
        QStringList found;
        for (const Entry& e : m_entries) {
            if (e.type == type && e.category == category && e.text.contains(fragment))
                found << e.text;
        }
        return found;
    }
    // Messages (any level) whose text is exactly `text`.
    int countExact(const QString& text) const
    {
        QMutexLocker lock(&m_mutex);
        int n = 0;
        for (const Entry& e : m_entries)
            n += e.text == text ? 1 : 0;
        return n;
    }

private:
    static LogRecorder*& instance()
    {
        static LogRecorder* current = nullptr;
        return current;
    }
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        LogRecorder* self = instance();
        if (!self)
            return;
        {
            QMutexLocker lock(&self->m_mutex);
            self->m_entries.append({type, QString::fromLatin1(context.category), text});
        }
        const bool echo = self->m_echo == Echo::All || (self->m_echo == Echo::NoDebug && type != QtDebugMsg);
        if (self->m_previous && echo)
            self->m_previous(type, context, text);
    }

    Echo m_echo;
    QtMessageHandler m_previous = nullptr;
    mutable QMutex m_mutex;
    QList<Entry> m_entries;
};

} // namespace zmltest
