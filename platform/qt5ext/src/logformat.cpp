#include <qt5ext/logformat.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QTextCodec>

QTextStream& logtab(QTextStream& stream)
{
    stream << '\t';
    return stream;
}

QString logbinary(const QByteArray& data, const char* codecName)
{
    QTextCodec* codec = codecName ? QTextCodec::codecForName(codecName) : nullptr;
    // Count the bytes explicitly: the QByteArray overloads stop at a NUL.
    const QString text = codec ? codec->toUnicode(data.constData(), data.size())
                               : QString::fromLatin1(data.constData(), data.size());
    QString out;
    out.reserve(text.size() + 8);
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '\r': out += QLatin1String("\\r"); break;
        case '\n': out += QLatin1String("\\n"); break;
        case '\t': out += QLatin1String("\\t"); break;
        case '\\': out += QLatin1String("\\\\"); break;
        default:
            if (c.unicode() < 0x20 || c.unicode() == 0x7f)
                out += QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
            else
                out += c;
        }
    }
    return out;
}

QString loglist(const QStringList& list)
{
    QStringList quoted;
    quoted.reserve(list.size());
    for (const QString& item : list)
        quoted << QLatin1Char('"') + item + QLatin1Char('"');
    return QLatin1Char('[') + quoted.join(QLatin1String(", ")) + QLatin1Char(']');
}

QString logvariant(const QVariant& value)
{
    const QJsonValue json = QJsonValue::fromVariant(value);
    if (json.isObject())
        return QString::fromUtf8(QJsonDocument(json.toObject()).toJson(QJsonDocument::Compact));
    if (json.isArray())
        return QString::fromUtf8(QJsonDocument(json.toArray()).toJson(QJsonDocument::Compact));
    if (json.isString())
        return QLatin1Char('"') + json.toString() + QLatin1Char('"');
    if (json.isNull() || json.isUndefined())
        return value.isValid() ? value.toString() : QStringLiteral("null");
    return value.toString();
}
