SELECT USER_NAME() AS schema_name
