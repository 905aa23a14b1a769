#pragma once
#include "zelmodemslib_export.h"

#include <qt5ext/initconfig.h>

#include <QString>

// The modems subsystem's view of the appliance's installation configuration
// ("orvel5zel"): where the subsystem keeps its files.
class ZELMODEMSLIB_EXPORT ModemsEnvs : public qt5ext::InitConfig
{
public:
    ModemsEnvs();
    ~ModemsEnvs() override;

    /// "<workDir>/modems".
    QString modemsPath() const;
};
