#pragma once

#include "UI/KNSharedUIExport.h"

#include <QDialog>

#include <functional>

class QDialogButtonBox;
class QPushButton;

/// A dialog shown as a sheet of its parent's window. It deletes itself when it ends.
class KNSHAREDUI_EXPORT KNWindowController : public QDialog
{
    Q_OBJECT

public:
    explicit KNWindowController(QWidget *parent);
    ~KNWindowController() override;

    /// Shows the sheet and returns at once. The first field gets the focus unless another widget has it: Qt
    /// would give it to the buttons, which are made before the fields. `ended` receives the return code, 0 if
    /// cancelled. It is not called if the sheet is deleted before.
    void beginSheet(std::function<void(int returnCode)> ended);
    void endSheetWithReturnCode(int code);
    /// Whether the sheet has ended; later results have no effect.
    bool closed() const { return m_closed; }

    void done(int code) override;

protected:
    /// Creates a row of buttons: Cancel ends the sheet with 0, the default button with 1.
    QDialogButtonBox *makeButtons(const QString &acceptTitle);
    /// The button of makeButtons() that ends the sheet with 1.
    static QPushButton *acceptButton(const QDialogButtonBox &buttons);

private:
    bool m_closed = false;
};
