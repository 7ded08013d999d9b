#include "Autocomplete/KNCompletionCatalog.h"

namespace {

QString key(const QString &schema, const QString &name)
{
    return schema.toLower() + QChar(u'\n') + name.toLower();
}

} // namespace

void KNCompletionCatalog::createIndex()
{
    m_byPath.reserve(objects.size());
    m_byName.reserve(objects.size());
    for (qsizetype index = 0; index < objects.size(); ++index) {
        m_byPath.insert(key(objects[index].schema, objects[index].name), index);
        m_byName[objects[index].name.toLower()].append(index);
    }
}

const KNCompletionCatalog::Object *KNCompletionCatalog::find(const QStringList &path) const
{
    if (path.isEmpty())
        return nullptr;
    const QString schema = path.size() > 1 ? path[path.size() - 2] : QString();
    const QString owner = schema.isEmpty() ? defaultSchema : schema;
    if (const auto found = m_byPath.constFind(key(owner, path.last())); found != m_byPath.constEnd())
        return &objects[*found];
    const QList<qsizetype> same = m_byName.value(path.last().toLower());
    return schema.isEmpty() && same.size() == 1 ? &objects[same.first()] : nullptr;
}
