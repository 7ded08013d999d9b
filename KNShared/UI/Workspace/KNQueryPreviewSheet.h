#pragma once

#include "UI/Workspace/KNQueryPreview.h"

class KNQueryPreviewDialog;

/// The preview as a sheet of its window.
class KNQueryPreviewSheet : public KNQueryPreview
{
    Q_OBJECT

public:
    KNQueryPreviewSheet(QWidget *parent, const VantorDBC &details);

protected:
    void showSheet() override;
    void closeSheet() override;
    void showStatements(const QString &text, const KNQueryReport &report) override;
    void showRunning(bool isRunning) override;
    void showProgress(int done, int total) override;
    void showOutcome(const KNStatementOutcome &outcome) override;

private:
    KNQueryPreviewDialog *const m_dialog; ///< belongs to the preview's parent, as the preview does
};
