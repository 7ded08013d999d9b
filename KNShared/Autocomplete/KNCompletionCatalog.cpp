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

KNCompletionCatalog::Found KNCompletionCatalog::findOnServer(const QStringList &path) const
{
    if (path.size() > 3)
        return {};
    if (path.size() == 3) {
        const auto other = otherDatabase ? otherDatabase(path.first()) : nullptr;
        Found found = other ? other->findOnServer(path.mid(1)) : Found();
        if (found.object && !found.owner)
            found.owner = other;
        return found;
    }
    const bool isSystem = path.size() == 2 && isSystemSchema(path.first());
    const auto system = isSystem ? systemObjects() : nullptr;
    if (isSystem)
        return {system ? system->find(path) : nullptr, system};
    return {find(path), nullptr};
}
