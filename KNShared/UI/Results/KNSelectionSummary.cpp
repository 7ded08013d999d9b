#include "UI/Results/KNSelectionSummary.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Results/KNCountText.h"
#include "UI/Results/KNResultGridView.h"

#include <QPointer>
#include <QTimer>

namespace {

constexpr int PauseBeforeSummary = 40;

/// Groups the digits of a number before the point: "-1,234.5".
QString grouped(QString number)
{
    const qsizetype sign = number.startsWith(u'-') ? 1 : 0;
    const qsizetype point = number.indexOf(u'.');
    const qsizetype end = point < 0 ? number.size() : point;
    if (!std::all_of(number.begin() + sign, number.begin() + end, [](QChar c) { return c.isDigit(); }))
        return number; // in scientific notation
    for (qsizetype place = end - 3; place > sign; place -= 3)
        number.insert(place, u',');
    return number;
}

} // namespace

KNSelectionSummary::KNSelectionSummary(KNResultGridView *grid)
    : QObject(grid)
    , m_grid(grid)
    , m_pause(new QTimer(this))
{
    m_pause->setSingleShot(true);
    m_pause->setInterval(PauseBeforeSummary);
    connect(m_pause, &QTimer::timeout, this, &KNSelectionSummary::calculate);
    connect(grid->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &KNSelectionSummary::selectionChanged);
    // A reset clears the selection without a signal.
    connect(&grid->resultModel(), &QAbstractItemModel::modelReset, this,
            &KNSelectionSummary::selectionChanged);
}

KNSelectionSummary::~KNSelectionSummary()
{
    if (m_cancelled)
        *m_cancelled = true;
}

void KNSelectionSummary::selectionChanged()
{
    if (m_cancelled)
        *m_cancelled = true;
    m_cancelled = nullptr;
    m_pause->start();
}

void KNSelectionSummary::calculate()
{
    const QList<KNCellStatistics::Range> ranges = m_grid->selectedCells();
    qint64 cells = 0;
    for (const auto &[rows, columns] : ranges)
        cells += rows.count * columns.size();
    if (cells < 2)
        return show({});
    show(cells < ManyCells ? QString() : tr("Calculating…"));
    m_cancelled = std::make_shared<std::atomic<bool>>(false);
    const ResultRows shown = m_grid->resultModel().shownRows();
    KNDispatch::globalQueue(
        [self = QPointer(this), ranges, result = shown.result, order = shown.order, cancelled = m_cancelled] {
            const auto statistics = KNCellStatistics::of(*result, order, ranges, *cancelled);
            KNDispatch::mainQueue([self, statistics, cancelled] {
                if (!self || !statistics || self->m_cancelled != cancelled)
                    return;
                self->m_cancelled = nullptr;
                self->show(self->textOf(*statistics));
            });
        });
}

QString KNSelectionSummary::textOf(const KNCellStatistics &statistics) const
{
    const QString count = KNCountText(statistics.count);
    const QString nullCount = KNCountText(statistics.nullCount);
    QStringList parts = {statistics.nullCount == 0 ? KNFormat(tr("Count: %@"), count)
                                                   : KNFormat(tr("Count: %@ and %@ NULL"), count, nullCount)};
    if (statistics.kind == KNCellStatistics::Kind::Numbers) {
        parts.append(KNFormat(tr("Sum: %@"), grouped(statistics.sum)));
        parts.append(KNFormat(tr("Average: %@"), grouped(statistics.average)));
        parts.append(KNFormat(tr("Minimum: %@"), grouped(statistics.minimum.storedValue().displayText())));
        parts.append(KNFormat(tr("Maximum: %@"), grouped(statistics.maximum.storedValue().displayText())));
    } else if (statistics.kind == KNCellStatistics::Kind::Dates) {
        parts.append(KNFormat(tr("Minimum: %@"), statistics.minimum.dateTime().toString()));
        parts.append(KNFormat(tr("Maximum: %@"), statistics.maximum.dateTime().toString()));
    }
    return parts.join(QStringLiteral(" · "));
}

void KNSelectionSummary::show(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    Q_EMIT changed();
}
