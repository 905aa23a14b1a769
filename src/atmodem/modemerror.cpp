// The numbered errors of TS 27.007 and 27.005 in words.
#include "modemerror.h"


namespace zelmodems {

QString ModemError::cmeMeaning(int code)
{
    switch (code) {
    case 0: return tr("phone failure");
    case 1: return tr("no connection to phone");
    case 2: return tr("phone-adaptor link reserved");
    case 3: return tr("operation not allowed");
    case 4: return tr("operation not supported");
    case 5: return tr("PH-SIM PIN required");
    case 6: return tr("PH-FSIM PIN required");
    case 7: return tr("PH-FSIM PUK required");
    case 10: return tr("SIM not inserted");
    case 11: return tr("SIM PIN required");
    case 12: return tr("SIM PUK required");
    case 13: return tr("SIM failure");
    case 14: return tr("SIM busy");
    case 15: return tr("SIM wrong");
    case 16: return tr("incorrect password");
    case 17: return tr("SIM PIN2 required");
    case 18: return tr("SIM PUK2 required");
    case 20: return tr("memory full");
    case 21: return tr("invalid index");
    case 22: return tr("not found");
    case 23: return tr("memory failure");
    case 24: return tr("text string too long");
    case 25: return tr("invalid characters in text string");
    case 26: return tr("dial string too long");
    case 27: return tr("invalid characters in dial string");
    case 30: return tr("no network service");
    case 31: return tr("network timeout");
    case 32: return tr("network not allowed, emergency calls only");
    case 40: return tr("network personalisation PIN required");
    case 41: return tr("network personalisation PUK required");
    case 42: return tr("network subset personalisation PIN required");
    case 43: return tr("network subset personalisation PUK required");
    case 44: return tr("service provider personalisation PIN required");
    case 45: return tr("service provider personalisation PUK required");
    case 46: return tr("corporate personalisation PIN required");
    case 47: return tr("corporate personalisation PUK required");
    case 48: return tr("hidden key required");
    case 49: return tr("EAP method not supported");
    case 50: return tr("incorrect parameters");
    case 100: return tr("unknown error");
    case 103: return tr("illegal MS");
    case 106: return tr("illegal ME");
    case 107: return tr("GPRS services not allowed");
    case 111: return tr("PLMN not allowed");
    case 112: return tr("location area not allowed");
    case 113: return tr("roaming not allowed in this location area");
    case 132: return tr("service option not supported");
    case 133: return tr("requested service option not subscribed");
    case 134: return tr("service option temporarily out of order");
    case 148: return tr("unspecified GPRS error");
    case 149: return tr("PDP authentication failure");
    case 150: return tr("invalid mobile class");
    default: break;
    }
    return code >= 256 ? tr("manufacturer specific") : tr("unknown error");
}

QString ModemError::cmsMeaning(int code)
{
    switch (code) {
    // Network causes (TS 24.011 8.2.5.4) and TP-FCS (TS 23.040 9.2.3.22).
    case 1: return tr("unassigned (unallocated) number");
    case 8: return tr("operator determined barring");
    case 10: return tr("call barred");
    case 21: return tr("short message transfer rejected");
    case 27: return tr("destination out of service");
    case 28: return tr("unidentified subscriber");
    case 29: return tr("facility rejected");
    case 30: return tr("unknown subscriber");
    case 38: return tr("network out of order");
    case 41: return tr("temporary failure");
    case 42: return tr("congestion");
    case 47: return tr("resources unavailable");
    case 50: return tr("requested facility not subscribed");
    case 69: return tr("requested facility not implemented");
    case 81: return tr("invalid short message transfer reference value");
    case 95: return tr("invalid message");
    case 96: return tr("invalid mandatory information");
    case 97: return tr("message type non-existent or not implemented");
    case 98: return tr("message not compatible with short message protocol state");
    case 99: return tr("information element non-existent or not implemented");
    case 111: return tr("protocol error");
    case 127: return tr("interworking error");
    case 128: return tr("telematic interworking not supported");
    case 176: return tr("TPDU not supported");
    case 192: return tr("SC busy");
    case 193: return tr("no SC subscription");
    case 194: return tr("SC system failure");
    case 195: return tr("invalid SME address");
    case 196: return tr("destination SME barred");
    case 208: return tr("SIM SMS storage full");
    case 255: return tr("unspecified error cause");
    // TS 27.005 3.2.5.
    case 300: return tr("ME failure");
    case 301: return tr("SMS service of ME reserved");
    case 302: return tr("operation not allowed");
    case 303: return tr("operation not supported");
    case 304: return tr("invalid PDU mode parameter");
    case 305: return tr("invalid text mode parameter");
    case 310: return tr("SIM not inserted");
    case 311: return tr("SIM PIN required");
    case 312: return tr("PH-SIM PIN required");
    case 313: return tr("SIM failure");
    case 314: return tr("SIM busy");
    case 315: return tr("SIM wrong");
    case 316: return tr("SIM PUK required");
    case 317: return tr("SIM PIN2 required");
    case 318: return tr("SIM PUK2 required");
    case 320: return tr("memory failure");
    case 321: return tr("invalid memory index");
    case 322: return tr("memory full");
    case 330: return tr("SMSC address unknown");
    case 331: return tr("no network service");
    case 332: return tr("network timeout");
    case 340: return tr("no +CNMA acknowledgement expected");
    case 500: return tr("unknown error");
    default: break;
    }
    if (code >= 512)
        return tr("manufacturer specific");
    return tr("unknown cause");
}

QString ModemError::meaning(const QByteArray& finalCode)
{
    const bool cme = finalCode.startsWith("+CME ERROR:");
    if (!cme && !finalCode.startsWith("+CMS ERROR:"))
        return QString();
    bool ok = false;
    const int code = finalCode.mid(11).trimmed().toInt(&ok);
    if (!ok || code < 0)
        return QString();
    return cme ? cmeMeaning(code) : cmsMeaning(code);
}

QString ModemError::describe(const QString& reason, const QByteArray& finalCode)
{
    const QString words = meaning(finalCode);
    return words.isEmpty() ? reason : QStringLiteral("%1 (%2)").arg(reason, words);
}

} // namespace zelmodems
