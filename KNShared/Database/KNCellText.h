#pragma once

#include "Database/KNByteBuffer.h"
#include "Database/KNRowCell.h"
#include "KNSharedExport.h"

/// The text of cells in UTF-8, written without going through QString. Any thread.
namespace KNCellText {

/// Appends the text of the stored value, as KNValue::displayText() has it; nothing for null.
KNSHARED_EXPORT void append(KNByteBuffer &to, const KNRowCell &cell);

/// Whether the text is letters, digits and signs of ASCII that no format has to quote: numbers, dates, GUIDs
/// and bytes.
bool isPlain(const KNRowCell &cell);

/// Text in UTF-8 that is certainly valid: `cell`, which must be of the kind Text, or a copy in `repaired`
/// with U+FFFD for what does not decode.
KNSHARED_EXPORT QByteArrayView validText(const KNRowCell &cell, QByteArray &repaired);

inline bool isPlain(const KNRowCell &cell)
{
    return cell.tag != KNRowCell::Text;
}

} // namespace KNCellText
