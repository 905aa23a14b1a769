#pragma once
#include <QCoreApplication>

// The tool's own texts are translated like the library's (the Russian
// catalogue zelmodems_ru), so that under a Russian locale no line mixes
// the two languages: Tool::tr("...") everywhere a person reads the text.
// Keys of the JSON output, command and option names stay as they are.
class Tool
{
    Q_DECLARE_TR_FUNCTIONS(Tool)
};
