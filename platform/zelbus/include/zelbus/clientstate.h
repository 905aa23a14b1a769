#pragma once
#include <QtCore/qglobal.h>
#include <QString>

#if defined(ZELBUS_LIBRARY)
#  define ZELBUS_EXPORT Q_DECL_EXPORT
#else
#  define ZELBUS_EXPORT Q_DECL_IMPORT
#endif

namespace zelbus {

// Bus name under which the modems service publishes its state.
ZELBUS_EXPORT extern const QString BUSNAME_ZELMODEMS;

// The state record that a bus client publishes: the publishing client's bus
// name (owner) and its state text (the modems service sends a JSON object).
class ZELBUS_EXPORT ClientState
{
public:
    ClientState() = default;
    ClientState(const QString& owner, const QString& state);

    QString owner() const { return m_owner; }
    QString state() const { return m_state; }
    void setOwner(const QString& owner) { m_owner = owner; }
    void setState(const QString& state) { m_state = state; }

private:
    QString m_owner;
    QString m_state;
};

} // namespace zelbus
