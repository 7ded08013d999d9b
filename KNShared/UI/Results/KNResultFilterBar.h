#pragma once

#include "UI/KNSharedUIExport.h"
#include "UI/Results/KNResultTableModel.h"

#include <QWidget>

class QComboBox;
class QLineEdit;
class QTimer;

/// The field by which the rows of a result are filtered: a text, and in which column. Applied by itself when
/// typing pauses. On the UI thread.
class KNSHAREDUI_EXPORT KNResultFilterBar : public QWidget
{
    Q_OBJECT

public:
    explicit KNResultFilterBar(KNResultTableModel &model, QWidget *parent = nullptr);

    QLineEdit *field() const { return m_field; }
    QComboBox *columns() const { return m_columns; }
    /// Shows the bar and puts the cursor into the field.
    void open();

public Q_SLOTS:
    /// Takes the filter away and hides the bar.
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
