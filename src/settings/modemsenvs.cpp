#include "modemsenvs.h"

ModemsEnvs::ModemsEnvs()
    : qt5ext::InitConfig(QStringLiteral("orvel5zel"), false)
{
}

ModemsEnvs::~ModemsEnvs() = default;

QString ModemsEnvs::modemsPath() const
{
    return QStringLiteral("%1/modems").arg(workDir());
}
