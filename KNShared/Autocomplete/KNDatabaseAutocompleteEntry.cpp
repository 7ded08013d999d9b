#include "Autocomplete/KNDatabaseAutocompleteEntry.h"

#include "Foundation/KNFormat.h"

KNDatabaseAutocompleteEntry::KNDatabaseAutocompleteEntry(QString name, Kind kind, const QString *details)
    : m_name(std::move(name))
    , m_details(details)
    , m_kind(kind)
{
}

const KNDatabaseAutocompleteEntry::List &KNDatabaseAutocompleteEntry::entryChildren() const
{
    static const List none;
    return m_children ? *m_children : none;
}

void KNDatabaseAutocompleteEntry::addChild(KNDatabaseAutocompleteEntry *child)
{
    if (!m_children)
        m_children = std::make_unique<List>();
    m_children->append(child);
}

QString KNDatabaseAutocompleteEntry::entryParentDisplay() const
{
    if (!m_parent)
        return QString();
    const QString outer = m_parent->entryParentDisplay();
    return outer.isNull() ? m_parent->entryName() : KNFormat("%@.%@", outer, m_parent->entryName());
}

void KNDatabaseAutocompleteEntry::squeeze()
{
    if (m_children)
        m_children->squeeze();
}
