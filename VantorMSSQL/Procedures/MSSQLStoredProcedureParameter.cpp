#include "Procedures/MSSQLStoredProcedureParameter.h"

#include "RowEditing/MSSQLValueInput.h"

MSSQLStoredProcedureParameter MSSQLStoredProcedureParameter::of(const MSSQLParameterRecord &record)
{
    MSSQLStoredProcedureParameter parameter;
    parameter.parameterName = record.parameterName;
    parameter.parameterType = record.typeName;
    parameter.parameterIsOutput = record.isOutput;
    parameter.baseType = record.baseType.isNull() ? record.typeName : record.baseType;
    return parameter;
}

bool MSSQLStoredProcedureParameter::isSettable() const
{
    return baseType != QLatin1String("table type") && baseType != QLatin1String("cursor");
}

KNTypedValue::Input MSSQLStoredProcedureParameter::input() const
{
    return MSSQLValueInput::of(baseType);
}
