#pragma once

#include "UI/Workspace/KNProgressSheet.h"
#include "UI/Workspace/KNQueryPreview.h"

#include <QWidget>

#include <vector>

/// A query preview without widgets. It records what it would show, and really runs what a test accepts.
class RecordingQueryPreview : public KNQueryPreview
{
public:
    /// Makes createQueryPreviewViewContoller() return recording previews for the life of this object.
    class Installation
    {
    public:
        Installation()
        {
            setFactory([this](QWidget *parent, const VantorDBC &details) {
                last = new RecordingQueryPreview(parent, details);
                return last;
            });
        }
        ~Installation() { setFactory({}); }
        Installation(const Installation &) = delete;
        Installation &operator=(const Installation &) = delete;

        QPointer<RecordingQueryPreview> last; ///< null if there was none or it has ended
    };

    using KNQueryPreview::accept;
    using KNQueryPreview::cancel;

    bool isShown = false;
    QString statements;
    KNQueryReport report;
    std::vector<KNStatementOutcome> outcomes; ///< of runs without success
    int runs = 0;

protected:
    void showSheet() override { isShown = true; }
    void closeSheet() override { isShown = false; }
    void showStatements(const QString &text, const KNQueryReport &itsReport) override
    {
        statements = text;
        report = itsReport;
    }
    void showRunning(bool isRunning) override { runs += isRunning; }
    void showProgress(int, int) override {}
    void showOutcome(const KNStatementOutcome &outcome) override { outcomes.push_back(outcome); }

private:
    RecordingQueryPreview(QWidget *parent, const VantorDBC &details)
        : KNQueryPreview(parent, details)
    {
    }
};

/// Records the progress sheets that are shown.
class RecordingProgressSheets
{
public:
    struct Sheet
    {
        QStringList labels;
        QList<double> percentages;
        std::function<void()> cancel; ///< empty if the sheet has no Cancel button
        bool isShown = false;
        bool wasShown = false;
    };

    /// Makes KNProgressSheet::create() return recording sheets for the life of this object.
    RecordingProgressSheets()
    {
        KNProgressSheet::setFactory([this](QWidget *) {
            all.push_back(std::make_shared<Sheet>());
            return std::make_unique<Recorder>(all.back());
        });
    }
    ~RecordingProgressSheets() { KNProgressSheet::setFactory({}); }
    RecordingProgressSheets(const RecordingProgressSheets &) = delete;
    RecordingProgressSheets &operator=(const RecordingProgressSheets &) = delete;

    std::vector<std::shared_ptr<Sheet>> all;

private:
    class Recorder : public KNProgressSheet
    {
    public:
        explicit Recorder(std::shared_ptr<Sheet> sheet)
            : m_sheet(std::move(sheet))
        {
        }
        ~Recorder() override { m_sheet->isShown = false; }
        void setLabelString(const QString &label) override { m_sheet->labels.append(label); }
        void setPercentage(std::optional<double> percentage) override
        {
            if (percentage)
                m_sheet->percentages.append(*percentage);
        }
        void setCancelBlock(std::function<void()> cancel) override { m_sheet->cancel = std::move(cancel); }
        void begin() override { m_sheet->isShown = m_sheet->wasShown = true; }
        void end() override { m_sheet->isShown = false; }

    private:
        const std::shared_ptr<Sheet> m_sheet;
    };
};
