-- Put in the procedure's name, its parameters and its statements, then run.
CREATE PROCEDURE dbo.NewProcedure
	@Id int,
	@Name nvarchar(100) = NULL,
	@RowsFound int = 0 OUTPUT
AS
BEGIN
	-- Row counts of single statements would only be noise for the caller.
	SET NOCOUNT ON;

	SELECT
		@Id AS Id,
		@Name AS Name;

	SET @RowsFound = @@ROWCOUNT;
	RETURN 0;
END
GO
