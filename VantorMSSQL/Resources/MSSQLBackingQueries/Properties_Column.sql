-- One row about a column: a column for each property, NULL where it does not apply.
SELECT
    c.name AS [Name],
    CASE WHEN t.is_user_defined = 1 THEN QUOTENAME(SCHEMA_NAME(t.schema_id)) + N'.' ELSE N'' END + t.name AS [Type],
    CONVERT(int, c.max_length) AS [Length (bytes)],
    CASE WHEN c.precision > 0 THEN CONVERT(int, c.precision) END AS [Precision],
    CASE WHEN c.precision > 0 THEN CONVERT(int, c.scale) END AS [Scale],
    CASE c.is_nullable WHEN 1 THEN N'yes' ELSE N'no' END AS [Nullable],
    c.collation_name AS [Collation],
    CONVERT(nvarchar(60), i.seed_value) + N', '
        + CONVERT(nvarchar(60), i.increment_value) AS [Identity (seed, increment)],
    d.definition AS [Default],
    d.name AS [Default constraint],
    k.definition AS [Computed as],
    CASE k.is_persisted WHEN 1 THEN N'yes' WHEN 0 THEN N'no' END AS [Persisted],
    (
        SELECT CONVERT(nvarchar(max), e.value)
        FROM sys.extended_properties AS e
        WHERE e.class = 1
            AND e.major_id = c.object_id
            AND e.minor_id = c.column_id
            AND e.name = N'MS_Description'
    ) AS [Description]
FROM sys.columns AS c
INNER JOIN sys.types AS t ON t.user_type_id = c.user_type_id
LEFT JOIN sys.identity_columns AS i ON i.object_id = c.object_id AND i.column_id = c.column_id
LEFT JOIN sys.default_constraints AS d ON d.parent_object_id = c.object_id AND d.parent_column_id = c.column_id
LEFT JOIN sys.computed_columns AS k ON k.object_id = c.object_id AND k.column_id = c.column_id
WHERE c.object_id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{OBJECT}'))
    AND c.name = N'{COLUMN}'
