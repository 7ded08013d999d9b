-- One row about a type: a column for each property, NULL where it does not apply.
SELECT
    t.name AS [Name],
    s.name AS [Schema],
    b.name AS [Base type],
    CONVERT(int, t.max_length) AS [Length (bytes)],
    CASE WHEN t.precision > 0 THEN CONVERT(int, t.precision) END AS [Precision],
    CASE WHEN t.precision > 0 THEN CONVERT(int, t.scale) END AS [Scale],
    CASE t.is_nullable WHEN 1 THEN N'yes' ELSE N'no' END AS [Nullable],
    t.collation_name AS [Collation],
    CASE t.is_assembly_type WHEN 1 THEN N'yes' END AS [Assembly type]
FROM sys.types AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
LEFT JOIN sys.types AS b ON b.user_type_id = t.system_type_id AND b.system_type_id = t.system_type_id
    AND t.is_user_defined = 1
WHERE s.name = N'{SCHEMA}'
    AND t.name = N'{TYPE}'
