#pragma once

#include "Foundation/KNValue.h"
#include "UI/KNSharedUIExport.h"

#include <QString>

/// Formats a whole value for display. Pure; any thread.
namespace KNValueText {

enum class Form { Text, Json, Xml, Hex };

/// The suggested form of a value: Hex for bytes, Json or Xml for such text, otherwise Text.
KNSHAREDUI_EXPORT Form formOf(const KNValue &value);
/// Formats the value; as Text if it does not have that form.
KNSHAREDUI_EXPORT QString text(const KNValue &value, Form form);

/// Formats JSON with one line per member and element; a null QString if it is not JSON. Only white space
/// changes.
KNSHAREDUI_EXPORT QString indentedJson(const QString &json);
/// Formats XML, or a sequence of elements, with one line per element; a null QString if it is not XML.
KNSHAREDUI_EXPORT QString indentedXml(const QString &xml);
/// Sixteen bytes per line: offset, hexadecimal, printable characters.
KNSHAREDUI_EXPORT QString hexDump(const QByteArray &bytes);
/// Breaks lines of more than `length` units, which slow editors down. `wasBroken` is set if there were any.
KNSHAREDUI_EXPORT QString withShortLines(const QString &text, qsizetype length, bool *wasBroken);

} // namespace KNValueText
