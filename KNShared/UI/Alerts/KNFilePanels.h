#pragma once

#include "UI/KNSharedUIExport.h"

#include <QStringList>

#include <functional>
#include <memory>

class QWidget;

/// Lets the user choose files. No function blocks; the choice is passed to a callback, which is not called if
/// the user cancels. On the UI thread.
class KNSHAREDUI_EXPORT KNFilePanels
{
public:
    struct Request
    {
        QString title;
        QString suggestedName; ///< may be a path
        QStringList filters;   ///< such as "SQL scripts (*.sql)"
    };

    virtual ~KNFilePanels();

    /// The desktop's file dialogs, unless setShared() replaced them.
    static KNFilePanels &shared();
    /// Replaces the shared object; null restores the desktop's dialogs.
    static void setShared(std::unique_ptr<KNFilePanels> panels);

    virtual void chooseFileToSave(QWidget *parent, const Request &request,
                                  std::function<void(const QString &path)> chosen) = 0;
    virtual void chooseFilesToOpen(QWidget *parent, const Request &request,
                                   std::function<void(const QStringList &paths)> chosen) = 0;
    /// A folder that exists.
    virtual void chooseFolder(QWidget *parent, const Request &request,
                              std::function<void(const QString &path)> chosen) = 0;
};
