#pragma once

#include "Autocomplete/KNCompletionItem.h"
#include "UI/KNSharedUIExport.h"

#include <QListView>

class KNCompletionModel;

/// The list of completions below the text. It never takes the focus: its owner passes keys on.
class KNSHAREDUI_EXPORT KNCompletionPopup : public QListView
{
    Q_OBJECT

public:
    explicit KNCompletionPopup(QWidget *parent);

    /// Shows the items below a line of text, or above it if there is no room. No item is chosen unless
    /// `choosesFirst`.
    void showItems(QList<KNCompletionItem> items, const QRect &globalLine, bool choosesFirst);
    const QList<KNCompletionItem> &items() const;
    /// The row of the chosen item; -1 if the user has chosen none.
    int chosenRow() const { return currentIndex().isValid() ? currentIndex().row() : -1; }
    /// Moves the choice, from the end to the beginning and back.
    void moveChoice(int rows);

private:
    void showFrame();
    void place(const QRect &globalLine);

    KNCompletionModel *const m_model;
};
