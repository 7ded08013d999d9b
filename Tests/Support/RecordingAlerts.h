#pragma once

#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFileManager.h"
#include "UI/Alerts/KNFilePanels.h"

#include <vector>

/// Records what the user would be told and asked, and answers with what the test has prepared.
class RecordingAlerts : public KNAlerts
{
public:
    /// Puts a new one in place and returns it; it stays until the next one.
    static RecordingAlerts &install()
    {
        auto alerts = std::make_unique<RecordingAlerts>();
        RecordingAlerts &reference = *alerts;
        setShared(std::move(alerts));
        return reference;
    }

    void showError(QWidget *, const KNError &error) override { errors.push_back(error); }
    void showMessage(QWidget *, const QString &title, const QString &text) override
    {
        messages.push_back({title, text});
    }
    void ask(QWidget *, const Question &question, Answer answered) override
    {
        questions.push_back(question);
        if (answer)
            answered(*answer);
        else
            pending.push_back(std::move(answered));
    }

    std::vector<KNError> errors;
    std::vector<QStringList> messages; ///< title and text
    std::vector<Question> questions;
    std::optional<int> answer; ///< what every question is answered with at once; empty leaves them pending
    std::vector<Answer> pending;
};

/// Chooses files as the test has prepared them.
class RecordingFilePanels : public KNFilePanels
{
public:
    static RecordingFilePanels &install()
    {
        auto panels = std::make_unique<RecordingFilePanels>();
        RecordingFilePanels &reference = *panels;
        setShared(std::move(panels));
        return reference;
    }

    void chooseFileToSave(QWidget *, const Request &request,
                          std::function<void(const QString &)> chosen) override
    {
        requests.push_back(request);
        if (!answer.isEmpty())
            chosen(answer.first());
    }
    void chooseFilesToOpen(QWidget *, const Request &request,
                           std::function<void(const QStringList &)> chosen) override
    {
        requests.push_back(request);
        if (!answer.isEmpty())
            chosen(answer);
    }

    void chooseFolder(QWidget *parent, const Request &request,
                      std::function<void(const QString &)> chosen) override
    {
        chooseFileToSave(parent, request, std::move(chosen));
    }

    std::vector<Request> requests;
    QStringList answer; ///< the chosen paths; empty when the user chooses none
};

/// Records the files whose folders the user would see.
class RecordingFileManager : public KNFileManager
{
public:
    static RecordingFileManager &install()
    {
        auto fileManager = std::make_unique<RecordingFileManager>();
        RecordingFileManager &reference = *fileManager;
        setShared(std::move(fileManager));
        return reference;
    }

    void showFolderOf(const QString &file) override { files.append(file); }

    QStringList files;
};
