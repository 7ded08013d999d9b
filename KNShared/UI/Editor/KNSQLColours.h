#pragma once

#include "UI/KNSharedUIExport.h"

#include <QColor>
#include <QPalette>

/// The colours in which SQL and what the server says about it are shown: one set for light backgrounds, one
/// for dark ones. All texts have a contrast of at least 4.5 : 1 to the background.
struct KNSHAREDUI_EXPORT KNSQLColours
{
    QColor background;
    QColor text;
    QColor keyword;
    QColor function;
    QColor string;
    QColor number;
    QColor comment;
    QColor variable;
    QColor quotedName;
    QColor error;
    QColor lineNumber;
    QColor margin; ///< behind line numbers and folds
    QColor currentLine;
    QColor selection;
    QColor matchedBrace; ///< behind the two braces of a pair

    /// The set that suits the background of text fields.
    static KNSQLColours forPalette(const QPalette &palette);
};
