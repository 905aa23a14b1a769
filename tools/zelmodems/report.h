#pragma once
#include "failure.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

// What one command has to say: lines of text for a person, a JSON object for
// a program, or the reason it failed and the exit status that goes with it.
// Commands fill a report; the caller prints it in the form the user asked
// for (the demo gathers the reports of several commands into one).
class Report
{
public:
    // Exit statuses of the tool.
    enum Status {
        Success = 0,
        Failure = 1,    // the modem, the port or the operation failed
        UsageError = 2, // bad arguments
    };

    void line(const QString& text = QString());
    // "label:" padded to a column, then the value.
    void field(const QString& label, const QString& value);
    void lines(const QStringList& text);

    // The user asked for JSON rather than text.
    void setJsonOutput(bool on) { m_jsonOutput = on; }
    bool jsonOutput() const { return m_jsonOutput; }

    QJsonObject& json() { return m_json; }
    const QJsonObject& json() const { return m_json; }

    // The command failed: `message` goes to standard error, and JSON gets
    // it with the code's stable name ("errorCode"); a usage error is
    // always bad-input.
    void fail(const QString& message, Status status, zelmodems::Failure::Code code);
    void fail(const QString& message, zelmodems::Failure::Code code) { fail(message, Failure, code); }
    void fail(const QString& message, Status status) { fail(message, status, zelmodems::Failure::BadInput); }
    // The library's failure: its code and number go with the text, and
    // `message` (when given) is said instead of the library's text.
    void fail(const zelmodems::Failure& why, const QString& message = QString());
    zelmodems::Failure::Code errorCode() const { return m_code; }
    // Help text: printed as it is, whether JSON was asked for or not.
    void setHelp(const QString& text);

    bool failed() const { return m_status != Success; }
    int status() const { return m_status; }
    QString error() const { return m_error; }
    QStringList text() const { return m_lines; }
    bool isHelp() const { return !m_help.isEmpty(); }

    // Prints to standard output (text or JSON) and, for a failure, the
    // message to standard error prefixed with `who` ("zelmodems info").
    // Returns the exit status; Failure when standard output could not be
    // written (a full disk, a closed pipe), with the reason on standard
    // error. Control characters from modems and messages are shown escaped
    // (\x1b, \u202e) in text output, so that nothing they hold can drive
    // the terminal or reorder what it shows.
    int print(const QString& who) const;

    // The command printed its results itself (before acting on them);
    // print() then only reports a failure.
    void setPrinted() { m_printed = true; }

    // `text` with its control characters as \xHH (tabs kept) and its
    // bidirectional controls (U+202A-U+202E, U+2066-U+2069) as \uHHHH.
    static QString escaped(const QString& text);

    // Every later print shows `device` as `port` (the recording relay's
    // pseudo-terminal is the user's port to the user).
    static void setDeviceAlias(const QString& device, const QString& port);

    static const int LABEL_WIDTH = 14;

private:
    QStringList m_lines;
    QJsonObject m_json;
    QString m_error;
    QString m_help;
    int m_status = Success;
    zelmodems::Failure::Code m_code = zelmodems::Failure::NoFailure;
    int m_errorNumber = -1;
    bool m_jsonOutput = false;
    bool m_printed = false;
};
