#include "Autocomplete/KNCompletionObjects.h"

#include "Autocomplete/KNCompletionCatalog.h"
#include "SQL/Scope/KNSQLScope.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace {

using Kind = KNCompletionItem::Kind;
using Group = KNCompletionCandidates::Group;
using Object = KNCompletionCatalog::Object;
using Expected = KNSQLExpected;

bool isSameObjectName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

Kind kindOf(KNCompletionCatalog::Kind kind)
{
    switch (kind) {
    case KNCompletionCatalog::Kind::Table:
        return Kind::Table;
    case KNCompletionCatalog::Kind::View:
        return Kind::View;
    case KNCompletionCatalog::Kind::Procedure:
        return Kind::Procedure;
    case KNCompletionCatalog::Kind::Type:
        return Kind::Type;
    case KNCompletionCatalog::Kind::Sequence:
        return Kind::Sequence;
    case KNCompletionCatalog::Kind::Synonym:
        return Kind::Synonym;
    default:
        return Kind::Function;
    }
}

/// Whether an object of a kind can stand where these names are expected.
bool isExpected(KNCompletionCatalog::Kind kind, KNSQLExpectations expected)
{
    using Catalog = KNCompletionCatalog::Kind;
    switch (kind) {
    case Catalog::Table:
        return expected.testFlag(Expected::Sources) || expected.testFlag(Expected::Objects);
    case Catalog::View:
    case Catalog::TableFunction:
    case Catalog::Synonym:
        return expected & (KNSQLExpectations(Expected::Sources) | Expected::Modules | Expected::Objects);
    case Catalog::Procedure:
        return expected & (KNSQLExpectations(Expected::Procedures) | Expected::Modules | Expected::Objects);
    case Catalog::ScalarFunction:
        return expected & (KNSQLExpectations(Expected::Functions) | Expected::Modules | Expected::Objects);
    case Catalog::Type:
        return expected & (KNSQLExpectations(Expected::Types) | Expected::Objects);
    case Catalog::Sequence:
        return expected.testFlag(Expected::Objects);
    }
    return false;
}

bool isRelated(const Object &object, const QList<QStringList> &related)
{
    return std::any_of(related.begin(), related.end(), [&](const QStringList &path) {
        return isSameObjectName(path.first(), object.schema) && isSameObjectName(path.last(), object.name);
    });
}

/// An object whose name suits.
struct SuitableObject
{
    const Object *object;
    KNCompletionCandidates::Rank rank;

    bool operator<(const SuitableObject &other) const
    {
        const int order = KNCompletionCandidates::compare(rank, object->name, other.rank, other.object->name);
        return order == 0 ? std::less<>()(object, other.object) : order < 0;
    }
};

Group groupOf(const Object &object, const KNCompletionCatalog &catalog, bool isQualified,
              const QList<QStringList> &related)
{
    if (isRelated(object, related))
        return Group::Related;
    if (object.kind == KNCompletionCatalog::Kind::ScalarFunction)
        return Group::Functions;
    return isQualified || isSameObjectName(object.schema, catalog.defaultSchema) ? Group::Objects
                                                                                 : Group::OtherObjects;
}

} // namespace

void KNAddObjectCompletions(const KNCompletionRequest &request, const KNCompletionCatalog &catalog,
                            const QString &schema, const QList<QStringList> &related,
                            KNCompletionCandidates *candidates)
{
    const bool isQualified = !schema.isNull();
    std::vector<SuitableObject> suitable;
    for (const Object &object : catalog.objects) {
        if (!isExpected(object.kind, request.scope.expected) ||
            (isQualified && !isSameObjectName(object.schema, schema)) || !candidates->suits(object.name))
            continue;
        const Group group = groupOf(object, catalog, isQualified, related);
        suitable.push_back({&object, candidates->rank(group, object.name)});
    }
    // Items, with quoted names, are made of the best only: a database can have a hundred thousand.
    const auto count = std::min(suitable.size(), static_cast<std::size_t>(request.limit));
    const auto end = suitable.begin() + static_cast<std::ptrdiff_t>(count);
    std::partial_sort(suitable.begin(), end, suitable.end());
    const auto quoted = [&](const QString &name) {
        return request.quotedName ? request.quotedName(name) : name;
    };
    for (auto best = suitable.begin(); best != end; ++best) {
        const Object &object = *best->object;
        const bool isPlain = isSameObjectName(object.schema, catalog.defaultSchema) &&
                             object.kind != KNCompletionCatalog::Kind::ScalarFunction;
        // A scalar function is called with its schema.
        const QString prefix = isQualified || isPlain ? QString() : quoted(object.schema) + u'.';
        candidates->add(best->rank.group, {object.name, prefix + quoted(object.name), object.schema,
                                           QString(), kindOf(object.kind)});
    }
}
