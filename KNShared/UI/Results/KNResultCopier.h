#pragma once

#include "Database/VantorDBC.h"
#include "Export/ResultCopy.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

/// Puts rows on the clipboard as text. The text is made in the background; a further copy gives up the one
/// before. On the UI thread.
class KNSHAREDUI_EXPORT KNResultCopier : public QObject
{
    Q_OBJECT

public:
    explicit KNResultCopier(const VantorDBC &details, QObject *parent = nullptr);
    ~KNResultCopier() override;

    /// Nothing happens when there are no rows.
    void copy(const ResultRows &rows, const ResultFormat &format);
    bool isCopying() const { return m_cancelled != nullptr; }

Q_SIGNALS:
    /// The clipboard holds the rows; `remark` tells of what is missing, and is empty otherwise.
    void copied(qsizetype rows, const QString &remark);

private:
    void finish(const ResultCopy &copy, qsizetype rows);

    const VantorDBCPtr m_details;
    std::shared_ptr<std::atomic<bool>> m_cancelled; ///< of what goes on; null for nothing
};
