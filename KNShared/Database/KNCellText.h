#pragma once

#include "Database/KNByteBuffer.h"
#include "Database/KNRowCell.h"
#include "KNSharedExport.h"

/// Writes the text of cells in UTF-8 without creating a QString. Any thread.
namespace KNCellText {

/// Appends the text of the stored value as KNValue::displayText() formats it; nothing for null.
KNSHARED_EXPORT void append(KNByteBuffer &to, const KNRowCell &cell);

/// Whether the text consists of ASCII letters, digits and signs that no format has to quote: numbers, dates,
/// GUIDs and bytes.
bool isPlain(const KNRowCell &cell);

/// Returns valid UTF-8 text: that of `cell`, which must be of kind Text, or a copy in `repaired` in which
/// U+FFFD replaces undecodable bytes.
KNSHARED_EXPORT QByteArrayView validText(const KNRowCell &cell, QByteArray &repaired);

inline bool isPlain(const KNRowCell &cell)
{
    return cell.tag != KNRowCell::Text;
}

} // namespace KNCellText
