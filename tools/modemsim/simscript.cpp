#include "simscript.h"

#include <QDateTime>
#include <QFile>
#include <QMap>
#include <QRegularExpression>

#include <atomic>
#include <memory>

using namespace zelmodems::sim;

namespace {

// Statement word, then the rest split once or twice on blanks.
struct Parsed {
    QString word;
    QString first;
    QString rest;      // everything after `first`
};

Parsed parse(const QString& statement)
{
    Parsed p;
    const QString s = statement.trimmed();
    const int a = s.indexOf(QLatin1Char(' '));
    p.word = a < 0 ? s : s.left(a);
    const QString tail = a < 0 ? QString() : s.mid(a + 1).trimmed();
    const int b = tail.indexOf(QLatin1Char(' '));
    p.first = b < 0 ? tail : tail.left(b);
    p.rest = b < 0 ? QString() : tail.mid(b + 1).trimmed();
    return p;
}

// The <stat> of a registration word, -1 for none.
int registrationState(const QString& word)
{
    static const QMap<QString, int> STATES = {{QStringLiteral("none"), 0}, {QStringLiteral("home"), 1},
                                              {QStringLiteral("searching"), 2}, {QStringLiteral("denied"), 3},
                                              {QStringLiteral("roaming"), 5}};
    return STATES.value(word, -1);
}

// The SIM state a word names; -1 for none.
int simState(const QString& word)
{
    static const QMap<QString, int> STATES = {{QStringLiteral("ready"), int(SimState::Ready)},
                                              {QStringLiteral("pin"), int(SimState::Pin)},
                                              {QStringLiteral("puk"), int(SimState::Puk)},
                                              {QStringLiteral("none"), int(SimState::NotInserted)},
                                              {QStringLiteral("failure"), int(SimState::Failure)}};
    return STATES.value(word, -1);
}

bool isLatin(const QString& text)
{
    for (const QChar c : text) {
        if (c.unicode() > 0x7E)
            return false;
    }
    return true;
}

} // namespace

bool SimScript::add(const QString& statement, QString* error)
{
    const Parsed p = parse(statement);
    const auto fail = [&](const QString& why) {
        *error = QStringLiteral("\"%1\": %2").arg(statement.trimmed(), why);
        return false;
    };
    bool ok = true;
    if (p.word == QLatin1String("signal")) {
        if (!QRegularExpression(QStringLiteral("^\\d{1,2},\\d{1,2}$")).match(p.first).hasMatch() || !p.rest.isEmpty())
            return fail(QStringLiteral("signal takes rssi,ber (for example 20,99)"));
    } else if (p.word == QLatin1String("sim")) {
        const Parsed more = parse(p.rest);
        bool pinOk = true;
        bool pukOk = true;
        const int pins = more.word.isEmpty() ? 3 : more.word.toInt(&pinOk);
        const int puks = more.first.isEmpty() ? 10 : more.first.toInt(&pukOk);
        if (simState(p.first) < 0 || !pinOk || !pukOk || pins < 0 || puks < 0 || !more.rest.isEmpty())
            return fail(QStringLiteral("sim takes ready, pin, puk, none or failure, and optionally the attempts left "
                                       "for the PIN and the PUK"));
    } else if (p.word == QLatin1String("sim-codes")) {
        const QRegularExpression digits(QStringLiteral("^\\d{4,8}$"));
        if (!digits.match(p.first).hasMatch() || !digits.match(p.rest).hasMatch())
            return fail(QStringLiteral("sim-codes takes the PIN and the PUK (digits)"));
    } else if (p.word == QLatin1String("network")) {
        if (p.first.isEmpty() || !QRegularExpression(QStringLiteral("^\\d{5,6}$")).match(p.rest).hasMatch())
            return fail(QStringLiteral("network takes a name (no spaces) and the MCC and MNC (25002)"));
    } else if (p.word == QLatin1String("store-size")) {
        const int places = p.first.toInt(&ok);
        if (!ok || places < 1 || places > 1000 || !p.rest.isEmpty())
            return fail(QStringLiteral("store-size takes the places of the SMS store (1-1000)"));
    } else if (p.word == QLatin1String("answer")) {
        if (p.first.isEmpty())
            return fail(QStringLiteral("answer takes a command and its answer (none for a bare OK)"));
    } else if (p.word == QLatin1String("ussd") || p.word == QLatin1String("sms")) {
        if (p.first.isEmpty() || p.rest.isEmpty())
            return fail(QStringLiteral("%1 takes a %2 and a text").arg(p.word, p.word == QLatin1String("sms")
                                                                                     ? QStringLiteral("sender")
                                                                                     : QStringLiteral("code")));
    } else if (p.word == QLatin1String("ussd-status")) {
        const int status = parse(p.rest).word.toInt(&ok);
        if (p.first.isEmpty() || !ok || status < 0 || status > 5)
            return fail(QStringLiteral("ussd-status takes a code and a status from 0 to 5"));
    } else if (p.word == QLatin1String("sms-pdu")) {
        const QByteArray hex = p.first.toLatin1();
        const int stat = p.rest.isEmpty() ? 1 : p.rest.toInt(&ok);
        if (hex.isEmpty() || hex.size() % 2 || QByteArray::fromHex(hex).toHex().toUpper() != hex.toUpper() || !ok
            || stat < 0 || stat > 3)
            return fail(QStringLiteral("sms-pdu takes a PDU in hexadecimal and a status from 0 to 3"));
    } else if (p.word == QLatin1String("error")) {
        const QString code = p.rest;
        if (p.first.isEmpty()
            || !(code.isEmpty() || code == QLatin1String("ERROR") || code.startsWith(QLatin1String("+CME ERROR: "))
                 || code.startsWith(QLatin1String("+CMS ERROR: "))))
            return fail(QStringLiteral("error takes one command, as after AT (+CSQ), and optionally the result "
                                       "code: ERROR, +CME ERROR: <n or text>, +CMS ERROR: <n or text>"));
    } else if (p.word == QLatin1String("silent")) {
        if (p.first.isEmpty() || !p.rest.isEmpty())
            return fail(QStringLiteral("%1 takes one command, as after AT (+CSQ)").arg(p.word));
    } else if (p.word == QLatin1String("latency") || p.word == QLatin1String("vanish-after")) {
        const int n = p.first.toInt(&ok);
        if (!ok || n < 0 || !p.rest.isEmpty())
            return fail(QStringLiteral("%1 takes a number").arg(p.word));
    } else if (p.word == QLatin1String("no-sms-confirmation") || p.word == QLatin1String("vanish")
               || p.word == QLatin1String("return")) {
        if (!p.first.isEmpty())
            return fail(QStringLiteral("%1 takes nothing").arg(p.word));
    } else if (p.word == QLatin1String("incoming-sms")) {
        if (p.first.isEmpty() || p.rest.isEmpty())
            return fail(QStringLiteral("incoming-sms takes a sender and a text"));
    } else if (p.word == QLatin1String("delivery-report")) {
        const Parsed more = parse(p.rest);
        const int reference = p.first.toInt(&ok);
        bool statusOk = true;
        const int status = more.first.isEmpty() ? 0 : more.first.toInt(&statusOk);
        if (!ok || reference < 0 || reference > 255 || more.word.isEmpty() || !statusOk || status < 0
            || status > 255)
            return fail(QStringLiteral("delivery-report takes a message reference (0-255), the recipient and "
                                       "optionally a status (0 delivered)"));
    } else if (p.word == QLatin1String("registration")) {
        if (registrationState(p.first) < 0 || !p.rest.isEmpty())
            return fail(QStringLiteral("registration takes home, roaming, denied, searching or none"));
    } else if (p.word == QLatin1String("network-ussd") || p.word == QLatin1String("ussd-menu")) {
        if (p.first.isEmpty())
            return fail(QStringLiteral("%1 takes a text").arg(p.word));
    } else if (p.word == QLatin1String("signal-change")) {
        const int rssi = p.first.toInt(&ok);
        if (!ok || rssi < 0 || (rssi > 31 && rssi != 99) || !p.rest.isEmpty())
            return fail(QStringLiteral("signal-change takes an rssi from 0 to 31, or 99"));
    } else if (p.word == QLatin1String("ring")) {
        if (p.first.isEmpty() || !p.rest.isEmpty())
            return fail(QStringLiteral("ring takes the caller's number"));
    } else if (p.word == QLatin1String("after")) {
        const int ms = p.first.toInt(&ok);
        QString inner;
        if (!ok || ms < 0 || p.rest.isEmpty() || parse(p.rest).word == QLatin1String("after")
            || !SimScript().add(p.rest, &inner))
            return fail(QStringLiteral("after takes milliseconds and a statement%1")
                            .arg(inner.isEmpty() ? QString() : QStringLiteral(" (") + inner + QLatin1Char(')')));
    } else {
        return fail(QStringLiteral("unknown statement \"%1\"").arg(p.word));
    }
    m_statements << statement.trimmed();
    return true;
}

bool SimScript::addFile(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        *error = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
        return false;
    }
    int number = 0;
    while (!file.atEnd()) {
        ++number;
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        QString why;
        if (!add(line, &why)) {
            *error = QStringLiteral("%1:%2: %3").arg(path).arg(number).arg(why);
            return false;
        }
    }
    return true;
}

void SimScript::apply(SimModem& modem) const
{
    for (const QString& statement : m_statements) {
        if (!statement.startsWith(QLatin1String("after ")))
            applyOne(statement, modem);
    }
}

QList<QPair<int, QString>> SimScript::delayed() const
{
    QList<QPair<int, QString>> result;
    for (const QString& statement : m_statements) {
        const Parsed p = parse(statement);
        if (p.word == QLatin1String("after"))
            result << qMakePair(p.first.toInt(), p.rest);
    }
    return result;
}

void SimScript::applyOne(const QString& statement, SimModem& modem)
{
    {
        const Parsed p = parse(statement);
        const QByteArray first = p.first.toLatin1();
        if (p.word == QLatin1String("signal")) {
            modem.setAnswer("+CSQ", "+CSQ: " + first);
        } else if (p.word == QLatin1String("sim")) {
            const Parsed more = parse(p.rest);
            modem.setSim(SimState(simState(p.first)), more.word.isEmpty() ? 3 : more.word.toInt(),
                         more.first.isEmpty() ? 10 : more.first.toInt());
        } else if (p.word == QLatin1String("sim-codes")) {
            modem.setSimCodes(first, p.rest.toLatin1());
        } else if (p.word == QLatin1String("network")) {
            modem.setNetwork(first, p.rest.toLatin1());
        } else if (p.word == QLatin1String("store-size")) {
            modem.setStoreSize(p.first.toInt());
        } else if (p.word == QLatin1String("ussd")) {
            // A make that takes the request packed presents the reply packed too.
            modem.setUssdReply(first, !isLatin(p.rest)                ? Ussd::ucs2(p.rest)
                                      : modem.profile().ussdPacked ? Ussd::packed(p.rest.toLatin1())
                                                                   : Ussd::plain(p.rest.toLatin1()));
        } else if (p.word == QLatin1String("ussd-status")) {
            const Parsed status = parse(p.rest);
            const int value = status.word.toInt();
            const QString text = p.rest.mid(status.word.size()).trimmed();
            modem.setUssdReply(first, text.isEmpty() ? Ussd::statusOnly(value)
                                      : isLatin(text) ? Ussd::plain(text.toLatin1(), 15, value)
                                                      : Ussd::ucs2(text, value));
        } else if (p.word == QLatin1String("sms")) {
            const QDateTime now = QDateTime::currentDateTime();
            modem.storeSms(isLatin(p.rest) ? DeliverPdu::gsm7(first, now, p.rest.toLatin1())
                                           : DeliverPdu::ucs2(first, now, p.rest),
                           0);
        } else if (p.word == QLatin1String("sms-pdu")) {
            modem.storeSms(first.toUpper(), p.rest.isEmpty() ? 1 : p.rest.toInt());
        } else if (p.word == QLatin1String("answer")) {
            // "\n" in the text starts a new line of the answer.
            modem.setAnswer(first, p.rest.toUtf8().replace("\\n", "\r\n"));
        } else if (p.word == QLatin1String("error") || p.word == QLatin1String("silent")) {
            const Reply reply = p.word == QLatin1String("silent") ? Reply::none()
                              : p.rest.isEmpty()                  ? Reply::error()
                                                                  : Reply::raw("\r\n" + p.rest.toUtf8() + "\r\n");
            // A command named without its arguments ("+CUSD") stands for
            // every form of it: "+CUSD=1,"AA180C3602",15" and "+CUSD?" too.
            const QByteArray name = first.toUpper();
            const bool bare = !name.contains('=') && !name.contains('?');
            modem.addHandler([name, bare, reply](const QByteArray& command) -> std::optional<Reply> {
                const QByteArray asked = command.toUpper();
                if (asked == name || (bare && (asked.startsWith(name + '=') || asked.startsWith(name + '?'))))
                    return reply;
                return std::nullopt;
            });
        } else if (p.word == QLatin1String("latency")) {
            modem.setLatency(p.first.toInt());
        } else if (p.word == QLatin1String("vanish-after")) {
            // Counts every command; the device goes once the last one is answered.
            auto left = std::make_shared<std::atomic<int>>(p.first.toInt());
            SimModem* target = &modem;
            modem.addHandler([left, target](const QByteArray&) -> std::optional<Reply> {
                if (left->fetch_sub(1) == 1)
                    target->vanishAfter(0);
                return std::nullopt;
            });
        } else if (p.word == QLatin1String("no-sms-confirmation")) {
            modem.setSmsConfirmation(false);
        } else if (p.word == QLatin1String("incoming-sms")) {
            const QDateTime now = QDateTime::currentDateTime();
            modem.receiveSms(isLatin(p.rest) ? DeliverPdu::gsm7(first, now, p.rest.toLatin1())
                                             : DeliverPdu::ucs2(first, now, p.rest));
        } else if (p.word == QLatin1String("delivery-report")) {
            const Parsed more = parse(p.rest);
            modem.receiveReport(StatusReportPdu::build(p.first.toInt(), more.word.toLatin1(),
                                                       QDateTime::currentDateTime(), more.first.toInt()));
        } else if (p.word == QLatin1String("registration")) {
            modem.setRegistration(registrationState(p.first));
        } else if (p.word == QLatin1String("network-ussd") || p.word == QLatin1String("ussd-menu")) {
            const QString text = statement.mid(p.word.size()).trimmed();
            const int status = p.word == QLatin1String("ussd-menu") ? 1 : 0;
            modem.sendNetworkUssd(isLatin(text) ? Ussd::plain(text.toLatin1(), 15, status) : Ussd::ucs2(text, status));
        } else if (p.word == QLatin1String("signal-change")) {
            modem.setSignal(p.first.toInt());
        } else if (p.word == QLatin1String("ring")) {
            modem.ring(first);
        } else if (p.word == QLatin1String("vanish")) {
            modem.vanish();
        } else if (p.word == QLatin1String("return")) {
            modem.reappear();
        }
    }
}
