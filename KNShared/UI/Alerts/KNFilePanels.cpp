#include "UI/Alerts/KNFilePanels.h"

#include <QFileDialog>
#include <QRegularExpression>

namespace {

/// The file dialogs of the desktop.
class FileDialogs : public KNFilePanels
{
public:
    void chooseFileToSave(QWidget *parent, const Request &request,
                          std::function<void(const QString &)> chosen) override
    {
        QFileDialog *const dialog = make(parent, request);
        dialog->setAcceptMode(QFileDialog::AcceptSave);
        dialog->setFileMode(QFileDialog::AnyFile);
        // A file name without an extension gets that of the selected filter.
        const auto takeEnding = [dialog](const QString &filter) {
            static const QRegularExpression ending(QStringLiteral("\\*\\.([\\w.]+)"));
            dialog->setDefaultSuffix(ending.match(filter).captured(1));
        };
        takeEnding(dialog->selectedNameFilter());
        QObject::connect(dialog, &QFileDialog::filterSelected, dialog, takeEnding);
        QObject::connect(dialog, &QFileDialog::fileSelected, dialog, chosen);
        dialog->open();
    }

    void chooseFilesToOpen(QWidget *parent, const Request &request,
                           std::function<void(const QStringList &)> chosen) override
    {
        QFileDialog *const dialog = make(parent, request);
        dialog->setFileMode(QFileDialog::ExistingFiles);
        QObject::connect(dialog, &QFileDialog::filesSelected, dialog, chosen);
        dialog->open();
    }

    void chooseFolder(QWidget *parent, const Request &request,
                      std::function<void(const QString &)> chosen) override
    {
        QFileDialog *const dialog = make(parent, request);
        dialog->setFileMode(QFileDialog::Directory);
        dialog->setOption(QFileDialog::ShowDirsOnly);
        QObject::connect(dialog, &QFileDialog::fileSelected, dialog, chosen);
        dialog->open();
    }

private:
    static QFileDialog *make(QWidget *parent, const Request &request)
    {
        auto *const dialog = new QFileDialog(parent, request.title);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setNameFilters(request.filters);
        dialog->selectFile(request.suggestedName);
        return dialog;
    }
};

std::unique_ptr<KNFilePanels> &sharedPanels()
{
    static std::unique_ptr<KNFilePanels> panels = std::make_unique<FileDialogs>();
    return panels;
}

} // namespace

KNFilePanels::~KNFilePanels() = default;

KNFilePanels &KNFilePanels::shared()
{
    return *sharedPanels();
}

void KNFilePanels::setShared(std::unique_ptr<KNFilePanels> panels)
{
    sharedPanels() = panels ? std::move(panels) : std::make_unique<FileDialogs>();
}
