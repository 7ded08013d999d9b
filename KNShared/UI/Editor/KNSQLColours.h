#pragma once

#include "UI/KNSharedUIExport.h"

#include <QColor>
#include <QPalette>

/// The colours of SQL and server messages: one set for light and one for dark backgrounds. All texts have a
/// contrast of at least 4.5 : 1 to the background.
struct KNSHAREDUI_EXPORT KNSQLColours
{
    QColor background;
    QColor text;
    QColor keyword;
    QColor function;
    QColor type;
    QColor string;
    QColor number;
    QColor comment;
    QColor variable;
    QColor quotedName;
    QColor error;
    QColor lineNumber;
    QColor margin; ///< background of line numbers and folds
    QColor currentLine;
    QColor selection;
    QColor matchedBrace; ///< background of a pair of matching braces

    /// Returns the set that suits the background of text fields.
    static KNSQLColours forPalette(const QPalette &palette);
};
