#pragma once

// Includes the editor component's headers, which need Qt's short keywords.
#include <QObject>

#define signals Q_SIGNALS
#define slots Q_SLOTS
#include <Qsci/qscicommandset.h>
#include <Qsci/qscilexercustom.h>
#include <Qsci/qscilexerjson.h>
#include <Qsci/qscilexerxml.h>
#include <Qsci/qsciscintilla.h>
#undef signals
#undef slots
