#pragma once

#include "UI/KNSharedUIExport.h"

#include <QStringList>

#include <functional>
#include <memory>

class QWidget;

/// Lets the user choose files. Nothing here waits: the choice comes by a call, on the UI thread, as
/// everything; there is no call when the user has chosen none.
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

    /// The desktop's panels, unless somebody has put something else in their place.
    static KNFilePanels &shared();
    /// Puts `panels` in place; null brings the desktop's back.
    static void setShared(std::unique_ptr<KNFilePanels> panels);

    virtual void chooseFileToSave(QWidget *parent, const Request &request,
                                  std::function<void(const QString &path)> chosen) = 0;
    virtual void chooseFilesToOpen(QWidget *parent, const Request &request,
                                   std::function<void(const QStringList &paths)> chosen) = 0;
};
