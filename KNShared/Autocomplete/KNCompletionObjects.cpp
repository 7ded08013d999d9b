#include "Autocomplete/KNCompletionObjects.h"

#include "Autocomplete/KNCompletionCatalog.h"
#include "SQL/Scope/KNSQLScope.h"

#include <algorithm>

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

} // namespace

void KNAddObjectCompletions(const KNCompletionRequest &request, const KNCompletionCatalog &catalog,
                            const QString &schema, const QList<QStringList> &related,
                            KNCompletionCandidates *candidates)
{
    const auto quoted = [&](const QString &name) {
        return request.quotedName ? request.quotedName(name) : name;
    };
    for (const Object &object : catalog.objects) {
        if (!isExpected(object.kind, request.scope.expected) ||
            (!schema.isNull() && !isSameObjectName(object.schema, schema)) || !candidates->suits(object.name))
            continue;
        const bool isPlain = !schema.isNull() || isSameObjectName(object.schema, catalog.defaultSchema);
        const bool isFunction = object.kind == KNCompletionCatalog::Kind::ScalarFunction;
        // A scalar function is called with its schema.
        const bool needsSchema = schema.isNull() && (!isPlain || isFunction);
        const Group group = isRelated(object, related) ? Group::Related
                            : isFunction               ? Group::Functions
                            : isPlain                  ? Group::Objects
                                                       : Group::OtherObjects;
        const QString name = quoted(object.name);
        candidates->add(group, {object.name, needsSchema ? quoted(object.schema) + u'.' + name : name,
                                object.schema, QString(), kindOf(object.kind)});
    }
}
