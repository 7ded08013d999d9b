-- sys.*: where rows are kept. There is one place for all, and nothing is partitioned.
CREATE VIEW sys.data_spaces AS
SELECT CAST('PRIMARY' AS sysname) AS name, 1 AS data_space_id, CAST('FG' AS char(2)) AS type,
    CAST('ROWS_FILEGROUP' AS nvarchar(60)) AS type_desc, CAST(1 AS bit) AS is_default, CAST(0 AS bit) AS is_system
GO
CREATE VIEW sys.partitions AS
SELECT CAST(i.object_id AS bigint) * 65536 + i.index_id AS partition_id, i.object_id, i.index_id,
    1 AS partition_number, CAST(i.object_id AS bigint) * 65536 + i.index_id AS hobt_id, i.rows,
    CAST(0 AS smallint) AS filestream_filegroup_id, CAST(0 AS tinyint) AS data_compression,
    CAST('NONE' AS nvarchar(60)) AS data_compression_desc
FROM sys.[indexes$] i
GO
CREATE VIEW sys.allocation_units AS
SELECT p.partition_id AS allocation_unit_id, CAST(1 AS tinyint) AS type,
    CAST('IN_ROW_DATA' AS nvarchar(60)) AS type_desc, p.hobt_id AS container_id, 1 AS data_space_id,
    p.rows / 50 + 1 AS total_pages, p.rows / 50 + 1 AS used_pages, p.rows / 50 AS data_pages
FROM sys.partitions p
GO
CREATE VIEW sys.dm_db_partition_stats AS
SELECT p.partition_id, p.object_id, p.index_id, p.partition_number, p.rows / 50 AS in_row_data_page_count,
    p.rows / 50 + 1 AS in_row_used_page_count, p.rows / 50 + 1 AS in_row_reserved_page_count,
    CAST(0 AS bigint) AS lob_used_page_count, CAST(0 AS bigint) AS lob_reserved_page_count,
    CAST(0 AS bigint) AS row_overflow_used_page_count, CAST(0 AS bigint) AS row_overflow_reserved_page_count,
    p.rows / 50 + 1 AS used_page_count, p.rows / 50 + 1 AS reserved_page_count, p.rows AS row_count
FROM sys.partitions p
GO
CREATE VIEW sys.stats AS
SELECT i.object_id, i.name, i.index_id AS stats_id, CAST(0 AS bit) AS auto_created, CAST(0 AS bit) AS user_created,
    CAST(0 AS bit) AS no_recompute, i.has_filter, i.filter_definition, CAST(0 AS bit) AS is_temporary,
    CAST(0 AS bit) AS is_incremental
FROM sys.[indexes$] i
WHERE i.index_id > 0
GO
CREATE VIEW sys.stats_columns AS
SELECT object_id, index_id AS stats_id, index_column_id AS stats_column_id, column_id
FROM sys.[index_columns$]
WHERE is_included_column = 0
GO
CREATE VIEW sys.filegroups AS
SELECT name, data_space_id, type, type_desc, is_default, is_system,
    CAST(NULL AS uniqueidentifier) AS filegroup_guid, CAST(NULL AS int) AS log_filegroup_id,
    CAST(0 AS bit) AS is_read_only
FROM sys.data_spaces
GO
CREATE VIEW sys.partition_schemes AS
SELECT name, data_space_id, type, type_desc, is_default, is_system, 0 AS function_id
FROM sys.data_spaces
WHERE 1 = 0
GO
CREATE VIEW sys.partition_functions AS
SELECT CAST('' AS sysname) AS name, 0 AS function_id, CAST('R' AS char(2)) AS type,
    CAST('RANGE' AS nvarchar(60)) AS type_desc, 1 AS fanout, CAST(0 AS bit) AS boundary_value_on_right,
    CAST(0 AS bit) AS is_system, CAST('2022-01-01' AS datetime) AS create_date,
    CAST('2022-01-01' AS datetime) AS modify_date
WHERE 1 = 0
GO
CREATE VIEW sys.partition_parameters AS
SELECT 0 AS function_id, 0 AS parameter_id, CAST(0 AS tinyint) AS system_type_id, CAST(0 AS smallint) AS max_length,
    CAST(0 AS tinyint) AS precision, CAST(0 AS tinyint) AS scale, CAST(NULL AS sysname) AS collation_name,
    0 AS user_type_id
WHERE 1 = 0
GO
CREATE VIEW sys.partition_range_values AS
SELECT 0 AS function_id, 0 AS boundary_id, 0 AS parameter_id, CAST(NULL AS sql_variant) AS value
WHERE 1 = 0
GO
CREATE VIEW sys.destination_data_spaces AS
SELECT 0 AS partition_scheme_id, 0 AS destination_id, 0 AS data_space_id
WHERE 1 = 0
GO
CREATE VIEW sys.xml_indexes AS
SELECT *, CAST(NULL AS int) AS using_xml_index_id, CAST(NULL AS char(1)) AS secondary_type,
    CAST(NULL AS nvarchar(60)) AS secondary_type_desc
FROM sys.indexes
WHERE 1 = 0
