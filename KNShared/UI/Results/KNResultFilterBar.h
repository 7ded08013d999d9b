#pragma once

#include "UI/KNSharedUIExport.h"
#include "UI/Results/KNResultTableModel.h"

#include <QWidget>

class QComboBox;
class QLineEdit;
class QTimer;

/// A filter for the rows of a result: a text and the column to search. Applied when the user pauses typing.
/// On the UI thread.
class KNSHAREDUI_EXPORT KNResultFilterBar : public QWidget
{
    Q_OBJECT

public:
    explicit KNResultFilterBar(KNResultTableModel &model, QWidget *parent = nullptr);

    QLineEdit *field() const { return m_field; }
    QComboBox *columns() const { return m_columns; }
    /// Shows the bar and focuses the field.
    void open();

public Q_SLOTS:
    /// Removes all filters, also those of columns, and hides the bar.
    void showAllRows();

Q_SIGNALS:
    void closed();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void apply();

    KNResultTableModel &m_model;
    QLineEdit *m_field;
    QComboBox *m_columns;
    QTimer *m_pause;
};
