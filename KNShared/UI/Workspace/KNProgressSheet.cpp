#include "UI/Workspace/KNProgressSheet.h"

#include "UI/Workspace/KNProgressSheetDialog.h"

namespace {

KNProgressSheet::Factory &sheetFactory()
{
    static KNProgressSheet::Factory factory;
    return factory;
}

/// A sheet whose window may be destroyed first.
class DialogSheet : public KNProgressSheet
{
public:
    explicit DialogSheet(QWidget *parent)
        : m_dialog(new KNProgressSheetDialog(parent))
    {
    }
    ~DialogSheet() override { delete m_dialog; }

    void setLabelString(const QString &label) override
    {
        if (m_dialog)
            m_dialog->setLabel(label);
    }
    void setPercentage(std::optional<double> percentage) override
    {
        if (m_dialog)
            m_dialog->setPercentage(percentage);
    }
    void setCancelBlock(std::function<void()> cancel) override
    {
        if (m_dialog)
            m_dialog->setCancelBlock(std::move(cancel));
    }
    void begin() override
    {
        if (m_dialog)
            m_dialog->open();
    }
    void end() override
    {
        if (m_dialog)
            m_dialog->hide();
    }

private:
    const QPointer<KNProgressSheetDialog> m_dialog;
};

} // namespace

KNProgressSheet::~KNProgressSheet() = default;

std::unique_ptr<KNProgressSheet> KNProgressSheet::create(QWidget *parent)
{
    return sheetFactory() ? sheetFactory()(parent) : std::make_unique<DialogSheet>(parent);
}

void KNProgressSheet::setFactory(Factory factory)
{
    sheetFactory() = std::move(factory);
}
