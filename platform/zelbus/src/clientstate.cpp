#include <zelbus/clientstate.h>

namespace zelbus {

const QString BUSNAME_ZELMODEMS = QStringLiteral("zel.modems");

ClientState::ClientState(const QString& owner, const QString& state)
    : m_owner(owner), m_state(state)
{
}

} // namespace zelbus
