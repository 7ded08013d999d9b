-- INFORMATION_SCHEMA.*
CREATE VIEW INFORMATION_SCHEMA.SCHEMATA AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS CATALOG_NAME, CAST(name AS nvarchar(128)) AS SCHEMA_NAME,
    CAST('dbo' AS nvarchar(128)) AS SCHEMA_OWNER, CAST(NULL AS varchar(6)) AS DEFAULT_CHARACTER_SET_CATALOG,
    CAST(NULL AS varchar(3)) AS DEFAULT_CHARACTER_SET_SCHEMA, CAST('iso_1' AS sysname) AS DEFAULT_CHARACTER_SET_NAME
FROM sys.[schemas$]
GO
CREATE VIEW INFORMATION_SCHEMA.TABLES AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS TABLE_CATALOG, s.name AS TABLE_SCHEMA, o.name AS TABLE_NAME,
    CAST(CASE o.type WHEN 'U' THEN 'BASE TABLE' ELSE 'VIEW' END AS varchar(10)) AS TABLE_TYPE
FROM sys.[objects$] o
JOIN sys.[schemas$] s ON s.schema_id = o.schema_id
WHERE o.type IN ('U', 'V') AND o.is_ms_shipped = 0
GO
CREATE VIEW INFORMATION_SCHEMA.VIEWS AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS TABLE_CATALOG, s.name AS TABLE_SCHEMA, o.name AS TABLE_NAME,
    CAST(o.definition AS nvarchar(4000)) AS VIEW_DEFINITION, CAST('NONE' AS varchar(7)) AS CHECK_OPTION,
    CAST('NO' AS varchar(2)) AS IS_UPDATABLE
FROM sys.[objects$] o
JOIN sys.[schemas$] s ON s.schema_id = o.schema_id
WHERE o.type = 'V' AND o.is_ms_shipped = 0
GO
CREATE VIEW INFORMATION_SCHEMA.COLUMNS AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS TABLE_CATALOG, s.name AS TABLE_SCHEMA, o.name AS TABLE_NAME,
    c.name AS COLUMN_NAME, c.column_id AS ORDINAL_POSITION,
    CAST(c.default_definition AS nvarchar(4000)) AS COLUMN_DEFAULT,
    CAST(CASE c.is_nullable WHEN 1 THEN 'YES' ELSE 'NO' END AS varchar(3)) AS IS_NULLABLE,
    CAST(t.name AS nvarchar(128)) AS DATA_TYPE,
    CAST(CASE WHEN c.max_length = -1 THEN -1 WHEN c.system_type_id IN (231, 239) THEN c.max_length / 2 WHEN
        c.system_type_id IN (165, 167, 173, 175) THEN c.max_length WHEN c.system_type_id IN (34, 35) THEN
        2147483647 WHEN c.system_type_id = 99 THEN 1073741823 END AS int) AS CHARACTER_MAXIMUM_LENGTH,
    CAST(CASE WHEN c.max_length = -1 THEN -1 WHEN c.system_type_id IN (231, 239, 165, 167, 173, 175) THEN
        c.max_length WHEN c.system_type_id IN (34, 35) THEN 2147483647 WHEN c.system_type_id = 99 THEN 2147483646
        END AS int) AS CHARACTER_OCTET_LENGTH,
    CAST(CASE WHEN c.system_type_id IN (48, 52, 56, 59, 60, 62, 106, 108, 122, 127) THEN c.precision END AS
        tinyint) AS NUMERIC_PRECISION,
    CAST(CASE WHEN c.system_type_id IN (59, 62) THEN 2 WHEN c.system_type_id IN (48, 52, 56, 60, 106, 108, 122,
        127) THEN 10 END AS smallint) AS NUMERIC_PRECISION_RADIX,
    CAST(CASE WHEN c.system_type_id IN (48, 52, 56, 60, 106, 108, 122, 127) THEN c.scale END AS int) AS
        NUMERIC_SCALE,
    CAST(CASE WHEN c.system_type_id IN (40, 58) THEN 0 WHEN c.system_type_id IN (41, 42, 43, 61) THEN c.scale END
        AS smallint) AS DATETIME_PRECISION, CAST(NULL AS sysname) AS CHARACTER_SET_CATALOG,
    CAST(NULL AS sysname) AS CHARACTER_SET_SCHEMA,
    CAST(CASE WHEN c.system_type_id IN (35, 167, 175) THEN 'iso_1' WHEN c.system_type_id IN (99, 231, 239) THEN
        'UNICODE' END AS sysname) AS CHARACTER_SET_NAME, CAST(NULL AS sysname) AS COLLATION_CATALOG,
    CAST(NULL AS sysname) AS COLLATION_SCHEMA, CAST(c.collation_name AS sysname) AS COLLATION_NAME,
    CAST(CASE WHEN c.user_type_id > 256 THEN DB_NAME() END AS sysname) AS DOMAIN_CATALOG,
    CAST(CASE WHEN c.user_type_id > 256 THEN SCHEMA_NAME(u.schema_id) END AS sysname) AS DOMAIN_SCHEMA,
    CAST(CASE WHEN c.user_type_id > 256 THEN u.name END AS sysname) AS DOMAIN_NAME
FROM sys.[columns$] c
JOIN sys.[objects$] o ON o.object_id = c.object_id
JOIN sys.[schemas$] s ON s.schema_id = o.schema_id
JOIN sys.[types$] t ON t.user_type_id = CASE c.system_type_id WHEN 240 THEN 128 ELSE c.system_type_id END
LEFT JOIN sys.[types$] u ON u.user_type_id = c.user_type_id
WHERE o.type IN ('U', 'V') AND o.is_ms_shipped = 0
GO
CREATE VIEW INFORMATION_SCHEMA.ROUTINES AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS SPECIFIC_CATALOG, s.name AS SPECIFIC_SCHEMA, o.name AS SPECIFIC_NAME,
    CAST(DB_NAME() AS nvarchar(128)) AS ROUTINE_CATALOG, s.name AS ROUTINE_SCHEMA, o.name AS ROUTINE_NAME,
    CAST(CASE o.type WHEN 'P' THEN 'PROCEDURE' ELSE 'FUNCTION' END AS nvarchar(20)) AS ROUTINE_TYPE,
    CAST(CASE WHEN o.type IN ('IF', 'TF') THEN 'TABLE' WHEN o.type = 'FN' THEN TYPE_NAME(p.system_type_id) END AS
        sysname) AS DATA_TYPE, CAST('SQL' AS nvarchar(30)) AS ROUTINE_BODY,
    CAST(o.definition AS nvarchar(4000)) AS ROUTINE_DEFINITION, CAST('MODIFIES' AS nvarchar(30)) AS SQL_DATA_ACCESS,
    o.create_date AS CREATED, o.modify_date AS LAST_ALTERED
FROM sys.[objects$] o
JOIN sys.[schemas$] s ON s.schema_id = o.schema_id
LEFT JOIN sys.[parameters$] p ON p.object_id = o.object_id AND p.parameter_id = 0
WHERE o.type IN ('P', 'FN', 'IF', 'TF')
GO
CREATE VIEW INFORMATION_SCHEMA.PARAMETERS AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS SPECIFIC_CATALOG, s.name AS SPECIFIC_SCHEMA, o.name AS SPECIFIC_NAME,
    p.parameter_id AS ORDINAL_POSITION,
    CAST(CASE WHEN p.parameter_id = 0 THEN 'OUT' WHEN p.is_output = 1 THEN 'INOUT' ELSE 'IN' END AS nvarchar(10))
        AS PARAMETER_MODE, CAST(CASE p.parameter_id WHEN 0 THEN 'YES' ELSE 'NO' END AS nvarchar(10)) AS IS_RESULT,
    CAST('NO' AS nvarchar(10)) AS AS_LOCATOR, p.name AS PARAMETER_NAME,
    CAST(TYPE_NAME(p.system_type_id) AS nvarchar(128)) AS DATA_TYPE,
    CAST(CASE WHEN p.max_length = -1 THEN -1 WHEN p.system_type_id IN (231, 239) THEN p.max_length / 2 WHEN
        p.system_type_id IN (165, 167, 173, 175) THEN p.max_length END AS int) AS CHARACTER_MAXIMUM_LENGTH,
    CAST(CASE WHEN p.system_type_id IN (48, 52, 56, 59, 60, 62, 106, 108, 122, 127) THEN p.precision END AS
        tinyint) AS NUMERIC_PRECISION,
    CAST(CASE WHEN p.system_type_id IN (48, 52, 56, 60, 106, 108, 122, 127) THEN p.scale END AS int) AS
        NUMERIC_SCALE
FROM sys.[parameters$] p
JOIN sys.[objects$] o ON o.object_id = p.object_id
JOIN sys.[schemas$] s ON s.schema_id = o.schema_id
GO
CREATE VIEW INFORMATION_SCHEMA.TABLE_CONSTRAINTS AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS CONSTRAINT_CATALOG, s.name AS CONSTRAINT_SCHEMA,
    o.name AS CONSTRAINT_NAME, CAST(DB_NAME() AS nvarchar(128)) AS TABLE_CATALOG, s.name AS TABLE_SCHEMA,
    t.name AS TABLE_NAME,
    CAST(CASE o.type WHEN 'PK' THEN 'PRIMARY KEY' WHEN 'UQ' THEN 'UNIQUE' WHEN 'F' THEN 'FOREIGN KEY' ELSE 'CHECK'
        END AS varchar(11)) AS CONSTRAINT_TYPE, CAST('NO' AS varchar(2)) AS IS_DEFERRABLE,
    CAST('NO' AS varchar(2)) AS INITIALLY_DEFERRED
FROM sys.[objects$] o
JOIN sys.[objects$] t ON t.object_id = o.parent_object_id
JOIN sys.[schemas$] s ON s.schema_id = t.schema_id
WHERE o.type IN ('PK', 'UQ', 'F', 'C')
GO
CREATE VIEW INFORMATION_SCHEMA.CHECK_CONSTRAINTS AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS CONSTRAINT_CATALOG, s.name AS CONSTRAINT_SCHEMA,
    o.name AS CONSTRAINT_NAME, CAST(o.definition AS nvarchar(4000)) AS CHECK_CLAUSE
FROM sys.[objects$] o
JOIN sys.[schemas$] s ON s.schema_id = o.schema_id
WHERE o.type = 'C'
GO
CREATE VIEW INFORMATION_SCHEMA.KEY_COLUMN_USAGE AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS CONSTRAINT_CATALOG, s.name AS CONSTRAINT_SCHEMA,
    o.name AS CONSTRAINT_NAME, CAST(DB_NAME() AS nvarchar(128)) AS TABLE_CATALOG, s.name AS TABLE_SCHEMA,
    t.name AS TABLE_NAME, c.name AS COLUMN_NAME, CAST(k.ordinal AS int) AS ORDINAL_POSITION
FROM (SELECT o.object_id, i.column_id, i.key_ordinal AS ordinal FROM sys.[objects$] o JOIN sys.[index_columns$] i
        ON i.object_id = o.parent_object_id AND i.index_id = o.unique_index_id WHERE o.type IN ('PK', 'UQ') AND
        i.is_included_column = 0 UNION ALL SELECT constraint_object_id, parent_column_id, CAST(constraint_column_id
        AS tinyint) FROM sys.[foreign_key_columns$]) k
JOIN sys.[objects$] o ON o.object_id = k.object_id
JOIN sys.[objects$] t ON t.object_id = o.parent_object_id
JOIN sys.[schemas$] s ON s.schema_id = t.schema_id
JOIN sys.[columns$] c ON c.object_id = t.object_id AND c.column_id = k.column_id
GO
CREATE VIEW INFORMATION_SCHEMA.CONSTRAINT_COLUMN_USAGE AS
SELECT TABLE_CATALOG, TABLE_SCHEMA, TABLE_NAME, COLUMN_NAME, CONSTRAINT_CATALOG, CONSTRAINT_SCHEMA, CONSTRAINT_NAME
FROM INFORMATION_SCHEMA.KEY_COLUMN_USAGE
GO
CREATE VIEW INFORMATION_SCHEMA.CONSTRAINT_TABLE_USAGE AS
SELECT TABLE_CATALOG, TABLE_SCHEMA, TABLE_NAME, CONSTRAINT_CATALOG, CONSTRAINT_SCHEMA, CONSTRAINT_NAME
FROM INFORMATION_SCHEMA.TABLE_CONSTRAINTS
GO
CREATE VIEW INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS CONSTRAINT_CATALOG, s.name AS CONSTRAINT_SCHEMA,
    o.name AS CONSTRAINT_NAME, CAST(DB_NAME() AS nvarchar(128)) AS UNIQUE_CONSTRAINT_CATALOG,
    SCHEMA_NAME(r.schema_id) AS UNIQUE_CONSTRAINT_SCHEMA, i.name AS UNIQUE_CONSTRAINT_NAME,
    CAST('SIMPLE' AS varchar(7)) AS MATCH_OPTION,
    CAST(CHOOSE(k.update_referential_action + 1, 'NO ACTION', 'CASCADE', 'SET NULL', 'SET DEFAULT') AS varchar(11))
        AS UPDATE_RULE,
    CAST(CHOOSE(k.delete_referential_action + 1, 'NO ACTION', 'CASCADE', 'SET NULL', 'SET DEFAULT') AS varchar(11))
        AS DELETE_RULE
FROM sys.[foreign_keys$] k
JOIN sys.[objects$] o ON o.object_id = k.object_id
JOIN sys.[schemas$] s ON s.schema_id = o.schema_id
JOIN sys.[objects$] r ON r.object_id = k.referenced_object_id
LEFT JOIN sys.[indexes$] i ON i.object_id = k.referenced_object_id AND i.index_id = k.key_index_id
GO
CREATE VIEW INFORMATION_SCHEMA.DOMAINS AS
SELECT CAST(DB_NAME() AS nvarchar(128)) AS DOMAIN_CATALOG, SCHEMA_NAME(schema_id) AS DOMAIN_SCHEMA,
    name AS DOMAIN_NAME, CAST(TYPE_NAME(system_type_id) AS nvarchar(128)) AS DATA_TYPE
FROM sys.[types$]
WHERE is_user_defined = 1 AND is_table_type = 0
