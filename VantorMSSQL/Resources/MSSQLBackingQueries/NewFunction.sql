-- A scalar function and an inline table-valued one. Keep the one you need, put in its name and its body, then run.
CREATE FUNCTION dbo.NewScalarFunction (
	@Value int
)
RETURNS int
AS
BEGIN
	DECLARE @Result int;
	SET @Result = @Value * 2;
	RETURN @Result;
END
GO
CREATE FUNCTION dbo.NewTableFunction (
	@Name nvarchar(100)
)
RETURNS TABLE
AS
RETURN (
	SELECT
		t.TABLE_SCHEMA,
		t.TABLE_NAME
	FROM INFORMATION_SCHEMA.TABLES AS t
	WHERE t.TABLE_NAME LIKE @Name
)
GO
