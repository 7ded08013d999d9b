-- A small database beside the shop.
CREATE TABLE dbo.Authors (AuthorId int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_Authors PRIMARY KEY, Name nvarchar(80) NOT NULL, Born smallint NULL)
CREATE TABLE dbo.Books (
    Isbn char(13) NOT NULL CONSTRAINT PK_Books PRIMARY KEY, Title nvarchar(200) NOT NULL,
    AuthorId int NOT NULL CONSTRAINT FK_Books_Authors REFERENCES dbo.Authors (AuthorId), Pages smallint NULL)
CREATE TABLE dbo.Loans (
    LoanId int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_Loans PRIMARY KEY,
    Isbn char(13) NOT NULL CONSTRAINT FK_Loans_Books REFERENCES dbo.Books (Isbn) ON DELETE CASCADE,
    Reader nvarchar(60) NOT NULL, LentAt datetime NOT NULL, ReturnedAt datetime NULL)
INSERT INTO dbo.Authors (Name, Born) VALUES (N'Selma Lagerlöf', 1858), (N'Михаил Булгаков', 1891), (N'Jane Austen', 1775), (N'夏目 漱石', 1867)
INSERT INTO dbo.Books (Isbn, Title, AuthorId, Pages)
VALUES ('9780000000016', N'Gösta Berlings saga', 1, 432), ('9780000000023', N'Мастер и Маргарита', 2, 480),
       ('9780000000030', N'Persuasion', 3, 249), ('9780000000047', N'吾輩は猫である', 4, 638), ('9780000000054', N'Emma', 3, 474)
INSERT INTO dbo.Loans (Isbn, Reader, LentAt, ReturnedAt)
SELECT CASE id % 5 WHEN 0 THEN '9780000000016' WHEN 1 THEN '9780000000023' WHEN 2 THEN '9780000000030' WHEN 3 THEN '9780000000047' ELSE '9780000000054' END,
       ISNULL(name, N'Anonymous'), DATEADD(day, id * 2, '2023-01-01'), CASE WHEN id % 6 > 0 THEN DATEADD(day, id * 2 + 14, '2023-01-01') END
FROM generate_rows(60) g
GO
CREATE VIEW dbo.OpenLoans AS
SELECT b.Title, l.Reader, l.LentAt FROM dbo.Loans AS l JOIN dbo.Books AS b ON b.Isbn = l.Isbn WHERE l.ReturnedAt IS NULL
GO
CREATE PROCEDURE dbo.ReturnBook @LoanId int AS
UPDATE dbo.Loans SET ReturnedAt = GETDATE() WHERE LoanId = @LoanId AND ReturnedAt IS NULL
RETURN @@ROWCOUNT
