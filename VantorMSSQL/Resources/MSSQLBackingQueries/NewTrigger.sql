-- Put in the trigger's name, its table and its statements, then run.
CREATE TRIGGER dbo.NewTrigger
ON dbo.YourTable
AFTER INSERT, UPDATE, DELETE
AS
BEGIN
	-- A statement that touches no row fires the trigger, too. This has to be the first line: SET changes @@ROWCOUNT.
	IF @@ROWCOUNT = 0
		RETURN;

	SET NOCOUNT ON;

	-- The tables inserted and deleted hold all rows of the statement, not one.
	DECLARE @Inserted int;
	DECLARE @Deleted int;
	SELECT @Inserted = COUNT(*) FROM inserted;
	SELECT @Deleted = COUNT(*) FROM deleted;
	PRINT 'Rows inserted: ' + CONVERT(varchar(10), @Inserted) + ', deleted: ' + CONVERT(varchar(10), @Deleted);
END
GO
