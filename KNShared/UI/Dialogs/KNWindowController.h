#pragma once

#include "UI/KNSharedUIExport.h"

#include <QDialog>

#include <functional>

class QDialogButtonBox;

/// A dialog that is shown as a sheet of its parent's window and deletes itself when it has ended.
class KNSHAREDUI_EXPORT KNWindowController : public QDialog
{
    Q_OBJECT

public:
    explicit KNWindowController(QWidget *parent);
    ~KNWindowController() override;

    /// Shows the sheet and returns at once; `ended` is called with what it was ended with, 0 when it was
    /// cancelled. It is not called when the sheet is deleted before.
    void beginSheet(std::function<void(int returnCode)> ended);
    void endSheetWithReturnCode(int code);
    /// Whether it has ended: what comes late has no effect any more.
    bool closed() const { return m_closed; }

    void done(int code) override;

protected:
    /// A row of buttons of which Cancel ends the sheet with 0, and the other, which is the one that the
    /// Return key presses, with 1.
    QDialogButtonBox *makeButtons(const QString &acceptTitle);

private:
    bool m_closed = false;
};
