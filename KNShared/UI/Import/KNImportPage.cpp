#include "UI/Import/KNImportPage.h"

KNImportPage::KNImportPage(KNImportSession &session, QWidget *parent)
    : QWidget(parent)
    , m_session(session)
{
}
