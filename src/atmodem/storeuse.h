#pragma once
#include "failure.h"
#include "zelmodemslib_export.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QList>
#include <QString>

class AtModem;

namespace zelmodems {

/// How full the modem's message stores are (AT+CPMS?, 3GPP TS 27.005
/// 3.2.2): for each store ("SM" the SIM, "ME" the modem, "MT" both) the
/// messages in it and its places, and which roles it has: where messages
/// are read and deleted, written and sent, and received. A full store that
/// receives means new messages are refused by the network until one is
/// deleted.
///
///     const zelmodems::StoreUse use = zelmodems::StoreUse::read(&modem);
///     for (const zelmodems::StoreUse::Store& store : use.stores())
///         if (store.isFull()) qWarning() << store.name << "is full";
///
/// A value; reading blocks like every AtModem call.
class ZELMODEMSLIB_EXPORT StoreUse
{
    Q_DECLARE_TR_FUNCTIONS(zelmodems::StoreUse)

public:
    enum Role { Reading = 1, Writing = 2, Receiving = 4 };

    struct Store
    {
        QString name;    ///< "SM", "ME", "MT", "BM", "SR"
        int used = 0;
        int total = 0;
        int roles = 0;   ///< Role flags

        bool isFull() const { return total > 0 && used >= total; }
    };

    StoreUse() = default;

    static StoreUse read(AtModem* modem);
    /// "+CPMS: "`<mem1>`",`<used1>`,`<total1>`,"`<mem2>`",..." as AT+CPMS? answers.
    static StoreUse fromAnswer(const QByteArray& answer);

    bool isRead() const { return !m_stores.isEmpty(); }
    /// Each store once, in the order the answer names them.
    QList<Store> stores() const { return m_stores; }
    /// The store new messages go to is full.
    bool isReceivingFull() const;
    Failure failure() const { return m_failure; }

private:
    QList<Store> m_stores;
    Failure m_failure;
};

} // namespace zelmodems
