#pragma once

#include "Database/VantorDBC.h"
#include "UI/Dialogs/KNWindowController.h"
#include "UI/Scripts/KNScriptObjectModel.h"

class KNScriptOptionsView;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTreeView;

/// Chooses objects of a database and writes their scripts. Ends with 1 once they are written; after a failure
/// or a cancellation it stays open. On the UI thread.
class KNSHAREDUI_EXPORT KNGenerateScriptsWindowController : public KNWindowController
{
    Q_OBJECT

public:
    using Settings = std::shared_ptr<const VantorDBC>;
    using IsChecked = KNScriptObjectModel::IsChecked;

    /// Starts to load the objects of the settings' database, whose server kind makes scripts. `isChecked`
    /// tells which of them are checked at first.
    KNGenerateScriptsWindowController(const Settings &settings, IsChecked isChecked, QWidget *parent);
    ~KNGenerateScriptsWindowController() override;

    KNScriptObjectModel *model() const { return m_model; }
    QTreeView *tree() const { return m_tree; }
    QLineEdit *search() const { return m_search; }
    KNScriptOptionsView *options() const { return m_options; }
    QPushButton *generateButton() const { return m_generate; }
    QString status() const;

public Q_SLOTS:
    /// Asks for the target and writes the scripts.
    void generate();

private:
    void arrange();
    void load();
    void showObjects(const QList<KNScriptObject> &objects, const KNError &error);
    void filter(const QString &text);
    void update();
    QString suggestedName() const;
    void write(const QString &path);

    const Settings m_settings;
    const IsChecked m_isChecked;
    KNScriptObjectModel *const m_model;
    QLineEdit *const m_search;
    QTreeView *const m_tree;
    QProgressBar *const m_loading;
    QLabel *const m_status;
    KNScriptOptionsView *const m_options;
    QPushButton *m_generate = nullptr;
};
