#include "Engine/Functions/Conversion.h"
#include "Types/TypeTraits.h"

namespace SampleServer {

namespace {

constexpr auto No = ConversionKind::NotAllowed;
constexpr auto Explicit = ConversionKind::Explicit;
constexpr auto Implicit = ConversionKind::Implicit;

bool isPlainText(TypeId id)
{
    return isText(id) && !isLegacyLob(id);
}
bool isPlainBinary(TypeId id)
{
    return isBinary(id) && !isLegacyLob(id);
}

ConversionKind fromNumber(TypeId from, TypeId to)
{
    if (isNumeric(to) || isLegacyDateTime(to) || to == TypeId::SqlVariant)
        return Implicit;
    if (isPlainBinary(to))
        return isFloat(from) ? Explicit : Implicit;
    return isPlainText(to) ? Implicit : No;
}

ConversionKind fromDateTime(TypeId from, TypeId to)
{
    if (isPlainText(to) || to == TypeId::SqlVariant)
        return Implicit;
    if (isPlainBinary(to))
        return Explicit;
    if (isDateTime(to)) {
        const bool dateAndTime =
            (from == TypeId::Date && to == TypeId::Time) || (from == TypeId::Time && to == TypeId::Date);
        return dateAndTime ? No : Implicit;
    }
    return isNumeric(to) && isLegacyDateTime(from) ? Explicit : No;
}

ConversionKind fromText(TypeId from, TypeId to)
{
    if (isLegacyLob(from))
        return isText(to) || to == TypeId::Xml ? Implicit : No;
    return isPlainBinary(to) ? Explicit : Implicit;
}

ConversionKind fromBinary(TypeId from, TypeId to)
{
    if (from == TypeId::Image)
        return isBinary(to) ? Implicit : No;
    if (isFloat(to) || to == TypeId::Text || to == TypeId::NText)
        return No;
    if (isDateTime(to) && !isLegacyDateTime(to))
        return Explicit;
    return Implicit;
}

} // namespace

ConversionKind conversionKind(TypeId from, TypeId to)
{
    if (from == to)
        return Implicit;
    if (isNumeric(from))
        return fromNumber(from, to);
    if (isDateTime(from))
        return fromDateTime(from, to);
    if (isText(from))
        return fromText(from, to);
    if (isBinary(from))
        return fromBinary(from, to);
    switch (from) {
    case TypeId::UniqueIdentifier:
        return isPlainText(to) || isPlainBinary(to) || to == TypeId::SqlVariant ? Implicit : No;
    case TypeId::Xml:
    case TypeId::HierarchyId:
        return isPlainText(to) || isPlainBinary(to) ? Explicit : No;
    case TypeId::SqlVariant:
        return isLegacyLob(to) || to == TypeId::Xml || to == TypeId::HierarchyId ? No : Explicit;
    default:
        return No;
    }
}

} // namespace SampleServer
