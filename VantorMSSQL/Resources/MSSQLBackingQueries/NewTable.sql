-- Put in the table's name, its columns and its keys, then run.
CREATE TABLE dbo.NewTable (
	Id int IDENTITY(1,1) NOT NULL,
	Name nvarchar(100) NOT NULL,
	CreatedAt datetime NOT NULL CONSTRAINT DF_NewTable_CreatedAt DEFAULT (GETDATE()),
	CONSTRAINT PK_NewTable PRIMARY KEY CLUSTERED (Id)
);
GO
CREATE INDEX IX_NewTable_Name ON dbo.NewTable (Name);
GO
