#include "UI/Workspace/KNQueryPreviewSheet.h"

#include "Foundation/KNFormat.h"
#include "UI/Workspace/KNQueryPreviewDialog.h"

KNQueryPreviewSheet::KNQueryPreviewSheet(QWidget *parent, const VantorDBC &details)
    : KNQueryPreview(parent, details)
    , m_dialog(new KNQueryPreviewDialog(parent))
{
    m_dialog->setDialect(details);
    connect(m_dialog, &KNQueryPreviewDialog::acceptRequested, this,
            [this] { accept(m_dialog->statements()); });
    connect(m_dialog, &KNQueryPreviewDialog::cancelRequested, this, [this] { cancel(); });
}

void KNQueryPreviewSheet::showSheet()
{
    m_dialog->setTitles(titles().title, titles().information, titles().acceptTitle);
    m_dialog->setRemoves(titles().removes);
    m_dialog->setEditable(isEditable());
    m_dialog->open();
}

void KNQueryPreviewSheet::closeSheet()
{
    m_dialog->hide();
    m_dialog->deleteLater();
}

void KNQueryPreviewSheet::showStatements(const QString &text, const KNQueryReport &report)
{
    m_dialog->showStatements(text, report.failure.isSet() || text.isNull());
    QStringList cautions = report.notices;
    if (report.failure)
        cautions.prepend(
            KNFormat(tr("The statements are incomplete: %@"), report.failure.localizedDescription()));
    else if (text.isNull())
        cautions.prepend(tr("The statements could not be created."));
    if (report.pair.differs() && !report.failure)
        m_dialog->showCaution(cautions + QStringList{report.pair.difference}, report.pair.corrected);
    else
        m_dialog->showCaution(cautions, {});
}

void KNQueryPreviewSheet::showRunning(bool isRunning)
{
    m_dialog->showRunning(isRunning, titles().progressTitle);
}

void KNQueryPreviewSheet::showProgress(int done, int total)
{
    m_dialog->showProgress(done, total);
}

void KNQueryPreviewSheet::showOutcome(const KNStatementOutcome &outcome)
{
    QStringList lines;
    lines.append(outcome.wasCancelled ? tr("The statements were cancelled.")
                                      : outcome.error.descriptionWithSuggestion());
    switch (outcome.changes) {
    case Changes::None:
        lines.append(tr("Nothing was changed."));
        break;
    case Changes::Some:
        lines.append(tr("Statements before this one may have changed something."));
        break;
    case Changes::Unknown:
        if (outcome.error.recoverySuggestion().isEmpty())
            lines.append(tr("Check on the server what was changed."));
        break;
    case Changes::All:
        break;
    }
    m_dialog->showFailure(lines.join(QLatin1Char('\n')), outcome.failedRange, outcome.failedLine);
}
