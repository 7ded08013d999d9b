#include "UI/Scripts/KNGenerateScriptsWindowController.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFileManager.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/Results/KNCountText.h"
#include "UI/Scripts/KNScriptOptionsView.h"
#include "UI/Scripts/KNScriptRun.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeView>

namespace {

constexpr QSize ScriptsWindowSize(760, 560);

} // namespace

KNGenerateScriptsWindowController::KNGenerateScriptsWindowController(const Settings &settings,
                                                                     IsChecked isChecked, QWidget *parent)
    : KNWindowController(parent)
    , m_settings(settings)
    , m_isChecked(std::move(isChecked))
    , m_model(new KNScriptObjectModel(this))
    , m_search(new QLineEdit)
    , m_tree(new QTreeView)
    , m_loading(new QProgressBar)
    , m_status(new QLabel)
    , m_options(new KNScriptOptionsView)
{
    setWindowTitle(KNFormat(tr("Generate Scripts of %@"), settings->database()));
    arrange();
    connect(m_search, &QLineEdit::textChanged, this, &KNGenerateScriptsWindowController::filter);
    connect(m_model, &KNScriptObjectModel::checkedCountChanged, this,
            &KNGenerateScriptsWindowController::update);
    update();
    load();
}

KNGenerateScriptsWindowController::~KNGenerateScriptsWindowController() = default;

void KNGenerateScriptsWindowController::arrange()
{
    m_search->setPlaceholderText(tr("Search objects"));
    m_search->setAccessibleName(tr("Search objects"));
    m_search->setClearButtonEnabled(true);
    m_tree->setModel(m_model);
    m_tree->setHeaderHidden(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setAccessibleName(tr("Objects"));
    m_loading->setRange(0, 0);
    m_loading->setTextVisible(false);
    m_loading->setAccessibleName(tr("Loading"));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);
    auto *const buttons = new QDialogButtonBox;
    buttons->addButton(QDialogButtonBox::Cancel)->setAutoDefault(false);
    m_generate = buttons->addButton(tr("&Generate…"), QDialogButtonBox::ActionRole);
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { endSheetWithReturnCode(0); });
    connect(m_generate, &QPushButton::clicked, this, &KNGenerateScriptsWindowController::generate);
    auto *const objects = new QVBoxLayout;
    objects->addWidget(m_search);
    objects->addWidget(m_tree, 1);
    objects->addWidget(m_loading);
    objects->addWidget(m_status);
    auto *const columns = new QHBoxLayout;
    columns->addLayout(objects, 1);
    columns->addWidget(m_options);
    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(columns, 1);
    layout->addWidget(buttons);
    m_generate->setDefault(true);
    m_search->setFocus();
    resize(ScriptsWindowSize);
}

void KNGenerateScriptsWindowController::load()
{
    KNDispatch::globalQueue([self = QPointer(this), settings = m_settings] {
        const auto scripter = settings->createDatabaseScripter();
        KNError error;
        const QList<KNScriptObject> objects = scripter->objects(&error);
        KNDispatch::mainQueue([self, objects, error, language = scripter->languageName()] {
            if (!self || self->closed())
                return;
            self->m_options->setLanguageName(language);
            self->showObjects(objects, error);
        });
    });
}

void KNGenerateScriptsWindowController::showObjects(const QList<KNScriptObject> &objects,
                                                    const KNError &error)
{
    m_loading->hide();
    m_model->setObjects(objects, m_isChecked);
    if (error)
        m_status->setText(KNFormat(tr("The objects could not be read. %@"), error.localizedDescription()));
    // A small tree is shown whole, and of a selection what is in it.
    constexpr qsizetype FewObjects = 100;
    const bool isSelection = m_model->checkedCount() < m_model->objectCount();
    if (objects.size() <= FewObjects || isSelection)
        m_tree->expandAll();
    if (isSelection)
        m_tree->setCurrentIndex(m_model->firstChecked());
}

void KNGenerateScriptsWindowController::filter(const QString &text)
{
    m_model->setFilter(text);
    if (!text.trimmed().isEmpty())
        m_tree->expandAll();
}

void KNGenerateScriptsWindowController::update()
{
    m_generate->setEnabled(m_model->checkedCount() > 0);
    m_generate->setToolTip(m_model->checkedCount() > 0 ? QString() : tr("No object is checked"));
    if (m_loading->isHidden() || m_model->objectCount() > 0)
        m_status->setText(KNFormat(tr("%@ of %@ objects checked"), KNCountText(m_model->checkedCount()),
                                   KNCountText(m_model->objectCount())));
    else
        m_status->setText(tr("Loading the objects…"));
}

QString KNGenerateScriptsWindowController::status() const
{
    return m_status->text();
}

QString KNGenerateScriptsWindowController::suggestedName() const
{
    using Target = KNScriptTarget::Kind;
    const QString name = m_settings->database().replace(QLatin1Char('/'), QLatin1Char('_'));
    switch (m_options->target()) {
    case Target::File:
        return name + QLatin1String(".sql");
    case Target::GzipFile:
        return name + QLatin1String(".sql.gz");
    case Target::ZipFile:
        return name + QLatin1String(".zip");
    case Target::Folder:
        break;
    }
    return name;
}

void KNGenerateScriptsWindowController::generate()
{
    using Target = KNScriptTarget::Kind;
    if (m_model->checkedCount() == 0)
        return;
    const Target kind = m_options->target();
    const QString filter = kind == Target::ZipFile    ? tr("Zip files (*.zip)")
                           : kind == Target::GzipFile ? tr("Compressed SQL scripts (*.sql.gz)")
                                                      : tr("SQL scripts (*.sql)");
    const KNFilePanels::Request request{tr("Generate Scripts"), suggestedName(), {filter}};
    const auto chosen = [self = QPointer(this)](const QString &path) {
        if (self && !self->closed())
            self->write(path);
    };
    if (kind == Target::Folder)
        KNFilePanels::shared().chooseFolder(this, request, chosen);
    else
        KNFilePanels::shared().chooseFileToSave(this, request, chosen);
}

void KNGenerateScriptsWindowController::write(const QString &path)
{
    KNScriptExport scripts;
    scripts.objects = m_model->checkedObjects();
    scripts.options = m_options->options();
    scripts.path = path;
    scripts.kind = m_options->target();
    KNScriptRun::start(this, m_settings, scripts,
                       [self = QPointer(this), path](const KNError &error, bool wasCancelled) {
                           if (!self || self->closed() || wasCancelled)
                               return;
                           if (error)
                               return KNAlerts::shared().showError(self, error);
                           KNFileManager::shared().showFolderOf(path);
                           self->endSheetWithReturnCode(1);
                       });
}
