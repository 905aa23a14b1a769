// Which line belongs to whom.
#include "linerouter_p.h"

namespace zelmodems {

namespace {

// Unsolicited result codes of TS 27.007/27.005 and the common vendor ones.
const char* const UNSOLICITED[] = {
    "RING", "+CRING:", "+CLIP:", "+CCWA:", "+CMTI:", "+CMT:", "+CDSI:", "+CDS:", "+CBM:", "+CBMI:",
    "+CUSD:", "+CREG:", "+CGREG:", "+CEREG:", "+C5GREG:", "+CIEV:", "+CGEV:", "+QIND:", "+QUSIM:",
    "^RSSI:", "^HCSQ:", "^MODE:", "^BOOT:", "^SYSSTART", "^SRVST:", "^SIMST:", "^DSFLOWRPT:", "^CEND:",
    "^ORIG:", "^CONF:", "^CONN:", "^STIN:", "^NDISSTAT:", "^SMMEMFULL", "+ZPASR:", "+ZUSIMR:", "+ZEND",
    "+CPIN: NOT READY", "+SIND:", "+PACSP", "*PSNWID:", "*PSUTTZ:", "+CTZV:", "+NITZ:",
};

} // namespace

void LineRouter::begin(const QByteArray& echo, const QByteArray& ownPrefix)
{
    m_echo = echo;
    m_ownPrefix = ownPrefix;
    m_inCommand = true;
}

void LineRouter::abandon()
{
    if (m_inCommand)
        m_draining = true;
    m_inCommand = false;
}

LineRouter::Kind LineRouter::route(const QByteArray& line)
{
    if (m_pduFollows) {
        m_pduFollows = false;
        return Kind::UnsolicitedPdu;
    }
    if (m_inCommand) {
        if (isFinal(line)) {
            m_inCommand = false;
            return Kind::Final;
        }
        if (!m_echo.isEmpty() && line == m_echo)
            return Kind::Echo;
        if (isUnsolicited(line, m_ownPrefix)) {
            m_pduFollows = hasPduLine(line);
            return Kind::Unsolicited;
        }
        return Kind::Intermediate;
    }
    if (isUnsolicited(line)) {
        m_pduFollows = hasPduLine(line);
        return Kind::Unsolicited;
    }
    // Between commands: the rest of an abandoned answer up to its result
    // code, or a result code nobody waits for, is no event; any other line
    // is one, known or not, and is passed on as it came.
    if (m_draining || isFinal(line)) {
        if (isFinal(line))
            m_draining = false;
        return Kind::Stray;
    }
    return Kind::Unsolicited;
}

bool LineRouter::isFinal(const QByteArray& line)
{
    static const char* const WHOLE[] = {"OK", "ERROR", "NO CARRIER", "BUSY", "NO ANSWER", "NO DIALTONE",
                                        "COMMAND NOT SUPPORT", "TOO MANY PARAMETERS"};
    for (const char* code : WHOLE) {
        if (line == code)
            return true;
    }
    return line.startsWith("+CME ERROR:") || line.startsWith("+CMS ERROR:") || line == "CONNECT"
        || line.startsWith("CONNECT ");
}

bool LineRouter::isUnsolicited(const QByteArray& line, const QByteArray& ownPrefix)
{
    if (!ownPrefix.isEmpty() && line.startsWith(ownPrefix))
        return false;
    for (const char* code : UNSOLICITED) {
        if (line.startsWith(code))
            return true;
    }
    return false;
}

bool LineRouter::hasPduLine(const QByteArray& line)
{
    return line.startsWith("+CMT:") || line.startsWith("+CDS:") || line.startsWith("+CBM:");
}

QByteArray LineRouter::ownPrefixOf(const QByteArray& command)
{
    if (!command.startsWith('+') && !command.startsWith('^'))
        return QByteArray();
    int end = 1;
    while (end < command.size() && command.at(end) != '=' && command.at(end) != '?')
        ++end;
    return command.left(end) + ':';
}

} // namespace zelmodems
