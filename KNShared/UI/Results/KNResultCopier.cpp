#include "UI/Results/KNResultCopier.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/KNPreferences.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>

KNResultCopier::KNResultCopier(const VantorDBC &details, QObject *parent)
    : QObject(parent)
    , m_details(details.copy())
{
}

KNResultCopier::~KNResultCopier()
{
    if (m_cancelled)
        *m_cancelled = true;
}

void KNResultCopier::copy(const ResultRows &rows, const ResultFormat &format)
{
    if (rows.rowCount() == 0 || rows.columns.isEmpty())
        return;
    if (m_cancelled)
        *m_cancelled = true;
    m_cancelled = std::make_shared<std::atomic<bool>>(false);
    const QPointer<KNResultCopier> self(this);
    KNDispatch::globalQueue([self, rows, format, details = m_details->copy(),
                             nullText = KNPreferences::current().nullText, cancelled = m_cancelled] {
        const ResultCopy copy = ResultCopy::make(rows, format, details, nullText, *cancelled);
        KNDispatch::mainQueue([self, copy, count = rows.rowCount(), cancelled] {
            if (self && self->m_cancelled == cancelled)
                self->finish(copy, count);
        });
    });
}

void KNResultCopier::finish(const ResultCopy &copy, qsizetype rows)
{
    m_cancelled = nullptr;
    QGuiApplication::clipboard()->setText(copy.text);
    QStringList remarks = copy.remarks;
    if (copy.rowsLeftOut > 0)
        remarks.prepend(
            KNFormat(tr("The last %lld of the rows were left out: the clipboard takes %lld MB at most. "
                        "Export them to a file instead."),
                     copy.rowsLeftOut, ResultCopy::LargestSize / (1024 * 1024)));
    Q_EMIT copied(rows - copy.rowsLeftOut, remarks.join(QLatin1Char(' ')));
}
