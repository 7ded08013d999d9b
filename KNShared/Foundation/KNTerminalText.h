#pragma once

#include "KNSharedExport.h"

#include <QString>

/// Prepares text for a terminal. Pure; any thread.
namespace KNTerminalText {

/// Replaces characters that would control a terminal with "\u001b" and the like: control characters except
/// line feeds and tabs, and characters that change the text direction.
KNSHARED_EXPORT QString escaped(const QString &text);
/// The same for text on one line; line ends and tabs are shown as symbols.
KNSHARED_EXPORT QString escapedInOneLine(const QString &text);
/// The number of terminal columns of a text: wide characters take two, combining ones none.
KNSHARED_EXPORT int displayWidth(const QString &text);

} // namespace KNTerminalText
