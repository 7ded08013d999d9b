#pragma once

#include "Foundation/KNValue.h"
#include "UI/KNSharedUIExport.h"

#include <QString>

/// How a value is shown whole. Pure; any thread.
namespace KNValueText {

enum class Form { Text, Json, Xml, Hex };

/// What a value looks like: bytes are Hex, text that is JSON or XML is that, everything else is Text.
KNSHAREDUI_EXPORT Form formOf(const KNValue &value);
/// The value in that form; as Text when it is not of that form.
KNSHAREDUI_EXPORT QString text(const KNValue &value, Form form);

/// The same JSON with a line for each member and element; a null QString when it is no JSON. Nothing but
/// white space is changed.
KNSHAREDUI_EXPORT QString indentedJson(const QString &json);
/// XML, or a sequence of elements, with a line for each element; a null QString when it is no XML.
KNSHAREDUI_EXPORT QString indentedXml(const QString &xml);
/// Sixteen bytes a line: place, hexadecimal, printable characters.
KNSHAREDUI_EXPORT QString hexDump(const QByteArray &bytes);
/// The same text with a line end in lines of more than `length` units, for editors that are slow with those.
/// `wasBroken` is set when there were such.
KNSHAREDUI_EXPORT QString withShortLines(const QString &text, qsizetype length, bool *wasBroken);

} // namespace KNValueText
