// The makes the simulator plays and their answers.
#include "simprofile.h"

#include <QStringList>

namespace zelmodems::sim {

Profile Profile::forMake(Make make)
{
    Profile p;
    p.make = make;
    switch (make) {
    case Make::Huawei:
        p.ati = "Manufacturer: huawei\r\nModel: E3372\r\nRevision: 22.315.01.00.00\r\n"
                "IMEI: 866123456789012\r\n+GCAP: +CGSM,+DS,+ES";
        p.revision = "22.315.01.00.00";
        p.ussdPacked = true;
        p.answers.insert("^ICCID?", "^ICCID: 98701234567890123456");
        // Huawei's own measurements: LTE, RSSI -60 dBm, RSRP -85 dBm,
        // SINR 10.2 dB, RSRQ -9 dB.
        p.answers.insert("^HCSQ?", "^HCSQ: \"LTE\",61,56,151,22");
        break;
    case Make::SimCom:
        p.ati = "Manufacturer: SIMCOM INCORPORATED\r\nModel: SIMCOM_SIM7600E-H\r\n"
                "Revision: SIM7600M22_V1.1\r\nIMEI: 861234567890123\r\n+GCAP: +CGSM";
        p.revision = "Revision: SIM7600M22_V1.1";
        p.imei = "861234567890123";
        p.imsi = "250991234567890";
        // Packet-domain registration with location (after AT+CGREG=2).
        p.answers.insert("+CGREG?", "+CGREG: 2,1,\"1A2B\",\"C3D4\"");
        // TS 27.007 extended quality: LTE, RSRQ -9 dB, RSRP -85 dBm.
        p.answers.insert("+CESQ", "+CESQ: 99,99,255,255,22,56");
        break;
    case Make::Zte:
        p.ati = "Manufacturer: ZTE INCORPORATED\r\nModel: MF626\r\nRevision: BD_P673A2V1.0.0B06\r\n"
                "IMEI: 355123456789012\r\n+GCAP: +CGSM,+DS,+ES";
        p.revision = "BD_P673A2V1.0.0B06";
        p.imei = "355123456789012";
        p.imsi = "250201234567890";
        p.answers.insert("+CRSM=176,12258,0,0,10", "+CRSM: 144,0,\"98701234567890123456\"");
        break;
    case Make::Cinterion:
        p.ati = "Cinterion\r\nMC52i\r\nREVISION 01.200";
        p.revision = "REVISION 01.200";
        p.imei = "351234567890123";
        p.imsi = "250011234567890";
        p.answers.insert("^SCID", "^SCID: 89701012345678901234");
        // Cell monitoring: ^SMONC lists up to seven cells of nine fields
        // (MCC, MNC, LAC, cell, BSIC, channel, RxLev, C1, C2; unused cells
        // zero), ^MONI the serving cell and ^MONP the neighbours in dBm.
        p.answers.insert("^SMONC", "^SMONC: 250,01,1A2B,C3D4,32,93,42,40,40,"
                                   "250,01,1A2B,C3D5,17,95,30,28,28,"
                                   "250,01,1A2C,0F01,21,100,25,23,23,"
                                   "000,000,0000,0000,00,0,0,-,-");
        p.answers.insert("^MONI", "Serving Cell                      I Dedicated channel\r\n"
                                  "chann rs  dBm   PLMN  LAC   cell  NCC BCC PWR RxLev  C1 I chann TS timAdv PWR dBm Q ChMod\r\n"
                                  "   93 42  -68  25001  1A2B  C3D4   4   0  33  -105  40 I No connection");
        p.answers.insert("^MONP", "chann rs  dBm   MCC MNC  BCC C1 C2\r\n"
                                  "   95 30  -80   250 01     5 28 28\r\n"
                                  "  100 25  -88   250 01     3 23 23\r\n"
                                  "  101 12 -101   250 01     1  9  9");
        break;
    case Make::HspaDataCard:
        p.ati = "Manufacturer: Qualcomm Incorporated\r\nModel: HSPA Data Card\r\n"
                "Revision: 11.608.13.02.00\r\nIMEI: 354123456789012\r\n+GCAP: +CGSM,+DS,+ES";
        p.revision = "11.608.13.02.00";
        p.imei = "354123456789012";
        p.imsi = "250021234567890";
        p.answers.insert("^ICCID?", "^ICCID: 98701234567890123456");
        break;
    case Make::Unknown:
        p.ati = "Generic V.92 Data/Fax Modem";
        p.revision = "V1.0";
        p.imei = "";
        p.imsi = "";
        break;
    }
    p.answers.insert("+CSQ", "+CSQ: 20,99");
    return p;
}

QString Profile::makeName(Make make)
{
    switch (make) {
    case Make::Huawei: return QStringLiteral("huawei");
    case Make::SimCom: return QStringLiteral("simcom");
    case Make::Zte: return QStringLiteral("zte");
    case Make::Cinterion: return QStringLiteral("cinterion");
    case Make::HspaDataCard: return QStringLiteral("hspa");
    case Make::Unknown: return QStringLiteral("unknown");
    }
    return QString();
}

QStringList Profile::makeNames()
{
    return {QStringLiteral("huawei"), QStringLiteral("simcom"), QStringLiteral("zte"),
            QStringLiteral("cinterion"), QStringLiteral("hspa"), QStringLiteral("unknown")};
}

bool Profile::parseMake(const QString& name, Make* make)
{
    static const Make makes[] = {Make::Huawei, Make::SimCom, Make::Zte,
                                 Make::Cinterion, Make::HspaDataCard, Make::Unknown};
    for (Make m : makes) {
        if (makeName(m).compare(name, Qt::CaseInsensitive) == 0) {
            *make = m;
            return true;
        }
    }
    return false;
}

} // namespace zelmodems::sim
