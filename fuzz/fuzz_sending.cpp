// What decides sending: SmsSender::send and UssdRequest::send on a modem
// whose answers are hostile, and the input checks that stand between a
// caller's text and the command line.
//
// Input: the first byte selects the mode; the rest is, by mode, the answer
// to PDU mode (AT+CMGF=0), the network's answer to the PDU (before an OK
// the rig adds), the answer to the USSD request (an OK and a closing
// "+CUSD: 2" follow, so that no wait runs to its time-out), or the text the
// input checks read. The modem is opened once, through a real
// pseudo-terminal, as the library opens any port.
#include "fuzzcommon.h"

#include "atinput.h"
#include "atmodem.h"
#include "simmodem.h"
#include "simrig.h"
#include "smssender.h"
#include "ussdrequest.h"

#include <memory>
#include <mutex>

ZML_FUZZ_INIT

using zelmodems::SmsSender;

namespace {

// The command whose answer is the input: "+CMGF=0", "+CUSD=1", or none.
QByteArray fuzzedCommand;

zmlfuzz::SimRig& rig()
{
    static auto* instance = new zmlfuzz::SimRig(zelmodems::sim::Make::Cinterion, [](const QByteArray& command) {
        return !fuzzedCommand.isEmpty() && command.startsWith(fuzzedCommand);
    });
    return *instance;
}

bool onlyDigitsAfterPlus(const QString& number)
{
    for (int i = 0; i < number.size(); ++i) {
        const ushort c = number.at(i).unicode();
        if (!((c >= '0' && c <= '9') || (c == '+' && i == 0)))
            return false;
    }
    return !number.isEmpty();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1 || size > 64 * 1024)
        return 0;
    const uint8_t selector = data[0];
    const QByteArray rest(reinterpret_cast<const char*>(data + 1), int(size - 1));

    if ((selector & 3) == 3) {
        // The checks: what they accept cannot end a command or a text.
        const QString text = QString::fromUtf8(rest);
        if (zelmodems::AtInput::checkRecipient(text).isEmpty())
            ZML_FUZZ_CHECK(onlyDigitsAfterPlus(text));
        if (zelmodems::AtInput::checkArgument(text).isEmpty())
            ZML_FUZZ_CHECK(!text.contains(QLatin1Char('"')) && !text.contains(QLatin1Char('\r')));
        if (zelmodems::AtInput::checkUssdCode(text).isEmpty())
            ZML_FUZZ_CHECK(!text.contains(QLatin1Char('"')) && !text.contains(QChar(0x1A)));
        if (zelmodems::AtInput::checkSmsText(text).isEmpty())
            ZML_FUZZ_CHECK(!text.contains(QChar(0x1A)) && !text.contains(QChar(0x1B)));
        if (zelmodems::AtInput::checkNumber(text).isEmpty())
            ZML_FUZZ_CHECK(!text.contains(QLatin1Char('\r')) && !text.contains(QLatin1Char(';')));
        return 0;
    }

    zmlfuzz::SimRig& r = rig();
    ZML_FUZZ_CHECK(r.ready);
    AtModem& m = r.modem;
    if ((selector & 3) == 2) {
        {
            std::lock_guard<std::mutex> lock(r.mutex);
            fuzzedCommand = "+CUSD=1";
            // A quote of the input left open is closed on a line of its own,
            // then the network ends the session: the wait always ends.
            r.answer = rest + "\r\nOK\r\n\"\r\n+CUSD: 2\r\n";
        }
        zelmodems::UssdRequest ussd(&m);
        const bool ok = ussd.send(QStringLiteral("*100#"));
        ZML_FUZZ_CHECK(!ok || (ussd.status() == 0 || ussd.status() == 1));
        ZML_FUZZ_CHECK(ok || !ussd.lastError().isEmpty());
        r.sim.waitUntilQuiet();
        return 0;
    }

    {
        std::lock_guard<std::mutex> lock(r.mutex);
        fuzzedCommand = (selector & 3) == 0 ? QByteArray("+CMGF=0") : QByteArray();
        r.answer = rest + "\r\nOK\r\n";
    }
    // The network's answer to the PDU, then an OK.
    r.sim.setSmsRefusal((selector & 3) == 1 ? rest + "\r\nOK" : QByteArray());
    SmsSender sender(&m);
    sender.setConfirmTimeout(100);
    const QString text = (selector & 4) ? QString(200, QLatin1Char('x')) : QStringLiteral("hello");
    const bool sent = sender.send(QStringLiteral("+79161234567"), text);
    const QList<SmsSender::PartState> states = sender.partStates();
    // Every part has one state; a send is whole only when every part was
    // confirmed with its own reference, and refused is never "may arrive".
    ZML_FUZZ_CHECK(states.size() == sender.partCount());
    ZML_FUZZ_CHECK(sent == (states.count(SmsSender::Sent) == states.size() && !states.isEmpty()));
    ZML_FUZZ_CHECK(sender.references().size() == states.count(SmsSender::Sent));
    ZML_FUZZ_CHECK(sender.unconfirmed() == states.contains(SmsSender::Unconfirmed));
    ZML_FUZZ_CHECK(!(states.contains(SmsSender::Refused) && states.contains(SmsSender::Unconfirmed)));
    ZML_FUZZ_CHECK(sent || !sender.lastError().isEmpty());
    r.sim.waitUntilQuiet();
    return 0;
}
