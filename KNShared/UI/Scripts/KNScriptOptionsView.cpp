#include "UI/Scripts/KNScriptOptionsView.h"

#include "UI/KNPlainToolTip.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>

namespace {

enum ScriptContent { StructureContent, StructureAndRowsContent, RowsContent };
enum ScriptFiles { OneScriptFile, ScriptFileForEach };

} // namespace

KNScriptOptionsView::KNScriptOptionsView(QWidget *parent)
    : QWidget(parent)
    , m_content(new QComboBox)
    , m_language(new QComboBox)
    , m_files(new QComboBox)
    , m_compresses(new QCheckBox)
{
    m_content->addItems({tr("Structure only"), tr("Structure and rows"), tr("Rows only")});
    m_language->addItems({tr("Server"), QStringLiteral("MySQL")});
    m_files->addItems({tr("One file"), tr("One file per object")});
    arrange();
    for (QComboBox *const choice : {m_content, m_language, m_files})
        connect(choice, &QComboBox::currentIndexChanged, this, &KNScriptOptionsView::update);
    for (const Box &each : std::as_const(m_boxes))
        connect(each.box, &QCheckBox::toggled, this, &KNScriptOptionsView::update);
    update();
}

void KNScriptOptionsView::addBox(QVBoxLayout *layout, KNScriptOptions::Switch option, const QString &title)
{
    auto *const box = new QCheckBox(title);
    box->setChecked(KNScriptOptions().*option);
    layout->addWidget(box);
    m_boxes.append({option, box});
}

void KNScriptOptionsView::arrange()
{
    auto *const form = new QFormLayout;
    form->addRow(tr("C&ontent:"), m_content);
    form->addRow(tr("&Language:"), m_language);
    auto *const parts = new QGroupBox(tr("Parts of the structure"));
    auto *const partsLayout = new QVBoxLayout(parts);
    addBox(partsLayout, &KNScriptOptions::indexes, tr("&Indexes"));
    addBox(partsLayout, &KNScriptOptions::constraints, tr("&Foreign keys and checks"));
    addBox(partsLayout, &KNScriptOptions::triggers, tr("&Triggers"));
    addBox(partsLayout, &KNScriptOptions::extendedProperties, tr("&Extended properties"));
    addBox(partsLayout, &KNScriptOptions::permissions, tr("&Permissions"));
    auto *const existing = new QGroupBox(tr("Objects that exist"));
    auto *const existingLayout = new QVBoxLayout(existing);
    addBox(existingLayout, &KNScriptOptions::drops, tr("&Drop them first"));
    addBox(existingLayout, &KNScriptOptions::ifNotExists, tr("&Keep them (IF NOT EXISTS)"));
    auto *const target = new QFormLayout;
    target->addRow(tr("&Write to:"), m_files);
    target->addRow({}, m_compresses);
    auto *const rows = new QVBoxLayout;
    addBox(rows, &KNScriptOptions::csvRows, tr("Rows as C&SV files"));
    target->addRow({}, rows);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addLayout(form);
    layout->addWidget(parts);
    layout->addWidget(existing);
    layout->addLayout(target);
    layout->addStretch(1);
}

void KNScriptOptionsView::setLanguageName(const QString &name)
{
    m_language->setItemText(0, name);
}

QCheckBox *KNScriptOptionsView::box(KNScriptOptions::Switch option) const
{
    for (const Box &each : m_boxes) {
        if (each.option == option)
            return each.box;
    }
    return nullptr;
}

KNScriptOptions KNScriptOptionsView::options() const
{
    KNScriptOptions options;
    for (const Box &each : m_boxes)
        options.*each.option = each.box->isChecked();
    options.schema = m_content->currentIndex() != RowsContent;
    options.data = m_content->currentIndex() != StructureContent;
    options.language = m_language->currentIndex() == 0 ? KNScriptOptions::Language::Server
                                                       : KNScriptOptions::Language::MySQL;
    for (const Box &each : m_boxes) {
        if (!options.reasonAgainst(each.option).isNull())
            options.*each.option = false;
    }
    options.csvRows = options.csvRows && m_files->currentIndex() == ScriptFileForEach;
    return options;
}

KNScriptTarget::Kind KNScriptOptionsView::target() const
{
    using Target = KNScriptTarget::Kind;
    if (m_files->currentIndex() == OneScriptFile)
        return m_compresses->isChecked() ? Target::GzipFile : Target::File;
    return m_compresses->isChecked() ? Target::ZipFile : Target::Folder;
}

void KNScriptOptionsView::update()
{
    const KNScriptOptions chosen = options();
    for (const Box &each : std::as_const(m_boxes)) {
        QString reason = chosen.reasonAgainst(each.option);
        const bool needsFiles =
            each.option == &KNScriptOptions::csvRows && m_files->currentIndex() == OneScriptFile;
        if (reason.isNull() && needsFiles)
            reason = tr("CSV files need one file per object.");
        each.box->setEnabled(reason.isNull());
        each.box->setToolTip(KNPlainToolTip(reason));
    }
    m_compresses->setText(m_files->currentIndex() == OneScriptFile ? tr("Co&mpress (gzip)")
                                                                   : tr("Co&mpress (zip)"));
    Q_EMIT changed();
}
