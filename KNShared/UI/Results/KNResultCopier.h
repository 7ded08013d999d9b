#pragma once

#include "Database/VantorDBC.h"
#include "Export/ResultCopy.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

/// Copies rows to the clipboard as text. The text is created in the background; a new copy cancels the
/// previous one. On the UI thread.
class KNSHAREDUI_EXPORT KNResultCopier : public QObject
{
    Q_OBJECT

public:
    explicit KNResultCopier(const VantorDBC &details, QObject *parent = nullptr);
    ~KNResultCopier() override;

    /// Copies the rows; does nothing if there are none.
    void copy(const ResultRows &rows, const ResultFormat &format);
    bool isCopying() const { return m_cancelled != nullptr; }

Q_SIGNALS:
    /// Emitted when the clipboard holds the rows; `remark` describes missing data and is otherwise empty.
    void copied(qsizetype rows, const QString &remark);

private:
    void finish(const ResultCopy &copy, qsizetype rows);

    const VantorDBCPtr m_details;
    std::shared_ptr<std::atomic<bool>> m_cancelled; ///< of the running copy; null if none
};
