#pragma once

#include "UI/KNSharedUIExport.h"

#include <QCoreApplication>
#include <QList>
#include <QStringList>

#include <optional>

/// The cells of tab-separated text, as spreadsheets copy it: a cell in double quotes may have tabs and line
/// ends inside, and doubled quotes.
class KNSHAREDUI_EXPORT KNPastedCells
{
    Q_DECLARE_TR_FUNCTIONS(KNPastedCells)

public:
    /// Returns the cells by rows. Nothing, with a sentence for the user, if there are none or more than
    /// `most`.
    static std::optional<QList<QStringList>> read(const QString &text, qsizetype most, QString *problem);
};
