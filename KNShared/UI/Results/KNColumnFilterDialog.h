#pragma once

#include "Results/KNColumnFilter.h"
#include "Results/KNDistinctValues.h"
#include "UI/Dialogs/KNWindowController.h"
#include "UI/Results/KNResultTableModel.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;

/// Asks for a filter of one column: a text and a choice among its values, which are read in the background.
/// On the UI thread.
class KNSHAREDUI_EXPORT KNColumnFilterDialog : public KNWindowController
{
    Q_OBJECT

public:
    /// Starts with the column's present filter.
    KNColumnFilterDialog(const KNResultTableModel &model, int column, QWidget *parent);
    ~KNColumnFilterDialog() override;

    QLineEdit *field() const { return m_field; }
    QListWidget *values() const { return m_values; }
    QCheckBox *allValues() const { return m_all; }
    QString remark() const;
    bool isLoading() const { return m_isLoading; }
    KNColumnFilter filter() const;

private:
    void arrange();
    void readValues(const KNResultTableModel &model);
    void showValues(const KNDistinctValues &values);
    void addValue(const QString &text, bool isNull);
    void updateAll();

    KNColumnFilter m_filter; ///< the initial one
    QLineEdit *m_field;
    QCheckBox *m_all;
    QListWidget *m_values;
    QLabel *m_remark;
    bool m_isLoading = true;
    const std::shared_ptr<std::atomic<bool>> m_cancelled = std::make_shared<std::atomic<bool>>(false);
};
