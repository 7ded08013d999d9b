#pragma once

#include "KNSharedExport.h"

#include <QString>

/// Text for a terminal. Pure; any thread.
namespace KNTerminalText {

/// The text with "\u001b" and the like for characters that would control a terminal: control characters but
/// line feeds and tabs, and those that change the direction of text.
KNSHARED_EXPORT QString escaped(const QString &text);
/// The same for text of one line, in which line ends and tabs are shown as signs.
KNSHARED_EXPORT QString escapedInOneLine(const QString &text);
/// Places on a terminal that a text takes: wide characters take two, combining ones none.
KNSHARED_EXPORT int displayWidth(const QString &text);

} // namespace KNTerminalText
