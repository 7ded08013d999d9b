-- One row about a parameter of a procedure: a column for each property, NULL where it does not apply.
SELECT
    p.name AS [Name],
    CASE WHEN t.is_user_defined = 1 THEN QUOTENAME(SCHEMA_NAME(t.schema_id)) + N'.' ELSE N'' END + t.name AS [Type],
    CONVERT(int, p.parameter_id) AS [Position],
    CONVERT(int, p.max_length) AS [Length (bytes)],
    CASE WHEN p.precision > 0 THEN CONVERT(int, p.precision) END AS [Precision],
    CASE WHEN p.precision > 0 THEN CONVERT(int, p.scale) END AS [Scale],
    CASE p.is_output WHEN 1 THEN N'yes' ELSE N'no' END AS [Output]
FROM sys.parameters AS p
INNER JOIN sys.types AS t ON t.user_type_id = p.user_type_id
WHERE p.object_id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{OBJECT}'))
    AND p.name = N'{PARAMETER}'
