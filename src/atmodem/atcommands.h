#pragma once

// The AT commands the library sends, without the leading "AT" that the
// channel (AtModem::makeCommand) puts in front. Commands that only some
// makes understand live in a namespace named after the make.
//
// The constants are plain character arrays, so they convert to QByteArray
// wherever a command is expected and can have arguments appended:
//
//     modem.sendCommand(AT::Commands::DELETE_SMS + QByteArray::number(index), answer, 500);

namespace AT {
namespace Commands {

inline constexpr char AT[] = "";            ///< the bare "AT" probe
inline constexpr char ATE[] = "E";          ///< local echo, followed by 0 or 1
inline constexpr char ATI[] = "I";          ///< identification
inline constexpr char AT_AND_F0[] = "&F0";  ///< factory defaults
inline constexpr char AT_AND_V[] = "&V";    ///< current configuration
inline constexpr char REVISION[] = "+GMR";
inline constexpr char IMEI[] = "+GSN";
inline constexpr char IMSI[] = "+CIMI";
inline constexpr char COPS_MODE[] = "+COPS=3,0";
inline constexpr char COPS[] = "+COPS?";
inline constexpr char CSQ[] = "+CSQ";
inline constexpr char CUSD[] = "+CUSD=1";
inline constexpr char CUSD2[] = "+CUSD=0";
inline constexpr char CREG[] = "+CREG?";
inline constexpr char CREG2[] = "+CREG=2";
inline constexpr char SET_TEXT_MODE[] = "+CMGF=1";
inline constexpr char SET_PDU_MODE[] = "+CMGF=0";
inline constexpr char SEND_SMS[] = "+CMGS=";
inline constexpr char LIST_SMS[] = "+CMGL=4";
inline constexpr char DELETE_SMS[] = "+CMGD=";

namespace Huawei {
inline constexpr char SIMID[] = "^ICCID?";
inline constexpr char RESTART[] = "+CFUN=1,1";
} // namespace Huawei

namespace Siemens {
inline constexpr char RESTART[] = "+CFUN=1,1";
inline constexpr char SIMID[] = "^SCID";
inline constexpr char GET_CELL_LIST[] = "^SMONC";
inline constexpr char ACTIVE_CELL_INFO[] = "^MONI";
inline constexpr char INACTIVE_CELL_INFO[] = "^MONP";
} // namespace Siemens

namespace HSPA {
inline constexpr char RESTART[] = "+CFUN=1,1";
inline constexpr char SIMID[] = "^ICCID?";
} // namespace HSPA

namespace ZTE {
inline constexpr char SIMID[] = "+CRSM=176,12258,0,0,10";
inline constexpr char POWER_ON[] = "+CFUN=1";
} // namespace ZTE

namespace SimCom {
inline constexpr char RESTART[] = "+CFUN=1,1";
inline constexpr char CSCS[] = "+CSCS=\"GSM\"";
inline constexpr char CGREG[] = "+CGREG";
} // namespace SimCom

} // namespace Commands
} // namespace AT
