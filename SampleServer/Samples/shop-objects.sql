-- What surrounds the heart of the shop: two more schemas, and one of everything that a database can hold.
CREATE SCHEMA sales
GO
CREATE SCHEMA hr
GO
CREATE TYPE sales.PhoneNumber FROM varchar(24) NULL
CREATE TYPE dbo.Flag FROM bit NOT NULL
GO
-- after 2000
CREATE TYPE sales.LineList AS TABLE (LineNumber int NOT NULL PRIMARY KEY, ProductId int NOT NULL, Quantity smallint NOT NULL DEFAULT 1)
CREATE SYNONYM dbo.Clients FOR dbo.Customers
CREATE SYNONYM sales.Staff FOR hr.Employees
GO
-- Keys and checks of the tables that are there already
ALTER TABLE Orders ADD CONSTRAINT FK_Orders_Customers FOREIGN KEY (CustomerId) REFERENCES Customers (CustomerId) ON UPDATE CASCADE
ALTER TABLE OrderLines ADD CONSTRAINT FK_OrderLines_Orders FOREIGN KEY (OrderId) REFERENCES Orders (OrderId) ON DELETE CASCADE
ALTER TABLE OrderLines ADD CONSTRAINT FK_OrderLines_Products FOREIGN KEY (ProductId) REFERENCES Products (ProductId)
ALTER TABLE OrderLines ADD CONSTRAINT CK_OrderLines_Quantity CHECK (Quantity > 0)
ALTER TABLE Customers ADD CONSTRAINT CK_Customers_Country CHECK (Country LIKE '[A-Z][A-Z]')
CREATE INDEX IX_Orders_CustomerId ON Orders (CustomerId, OrderedAt DESC)
CREATE INDEX IX_Customers_City ON Customers (City)
GO
CREATE TABLE sales.Regions (
    RegionId tinyint NOT NULL CONSTRAINT PK_Regions PRIMARY KEY,
    Name nvarchar(40) NOT NULL CONSTRAINT UQ_Regions_Name UNIQUE)
CREATE TABLE sales.Stores (
    StoreId int IDENTITY(10, 10) NOT NULL CONSTRAINT PK_Stores PRIMARY KEY,
    RegionId tinyint NULL CONSTRAINT DF_Stores_Region DEFAULT 1
        CONSTRAINT FK_Stores_Regions REFERENCES sales.Regions (RegionId) ON DELETE SET NULL,
    Name nvarchar(60) NOT NULL,
    Phone sales.PhoneNumber,
    IsOpen dbo.Flag CONSTRAINT DF_Stores_IsOpen DEFAULT 1,
    OpenedOn smalldatetime NOT NULL CONSTRAINT DF_Stores_OpenedOn DEFAULT GETDATE())
CREATE TABLE sales.Carriers (
    Code char(4) NOT NULL CONSTRAINT PK_Carriers PRIMARY KEY NONCLUSTERED,
    Name nvarchar(60) NOT NULL,
    PricePerKg smallmoney NOT NULL CONSTRAINT CK_Carriers_Price CHECK (PricePerKg >= 0))
CREATE CLUSTERED INDEX CX_Carriers_Name ON sales.Carriers (Name)
CREATE TABLE sales.Shipments (
    OrderId int NOT NULL,
    ParcelNumber smallint NOT NULL,
    Carrier char(4) NULL CONSTRAINT FK_Shipments_Carriers REFERENCES sales.Carriers (Code) ON DELETE SET NULL ON UPDATE CASCADE,
    WeightKg real NULL,
    TrackingId uniqueidentifier ROWGUIDCOL NOT NULL CONSTRAINT DF_Shipments_TrackingId DEFAULT NEWID(),
    CONSTRAINT PK_Shipments PRIMARY KEY (OrderId, ParcelNumber DESC),
    CONSTRAINT FK_Shipments_Orders FOREIGN KEY (OrderId) REFERENCES dbo.Orders (OrderId) ON DELETE CASCADE)
CREATE TABLE sales.Invoices (
    InvoiceId bigint IDENTITY(9000000001, 1) NOT NULL CONSTRAINT PK_Invoices PRIMARY KEY,
    OrderId int NULL CONSTRAINT FK_Invoices_Orders REFERENCES dbo.Orders (OrderId),
    Net money NOT NULL,
    VatRate decimal(5, 4) NOT NULL CONSTRAINT DF_Invoices_VatRate DEFAULT 0.2,
    Gross AS (Net * (1 + VatRate)),
    IssuedOn datetime NOT NULL,
    CONSTRAINT CK_Invoices_Vat CHECK (VatRate BETWEEN 0 AND 1))
CREATE TABLE sales.Payments (
    PaymentId int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_Payments PRIMARY KEY,
    InvoiceId bigint NOT NULL CONSTRAINT FK_Payments_Invoices REFERENCES sales.Invoices (InvoiceId) ON DELETE CASCADE,
    Amount numeric(19, 4) NOT NULL,
    Method varchar(10) NOT NULL CONSTRAINT CK_Payments_Method CHECK (Method IN ('card', 'cash', 'transfer')))
CREATE TABLE sales.PriceHistory (
    ProductId int NOT NULL CONSTRAINT FK_PriceHistory_Products REFERENCES dbo.Products (ProductId) ON DELETE CASCADE,
    ValidFrom datetime NOT NULL,
    Price money NOT NULL,
    CONSTRAINT PK_PriceHistory PRIMARY KEY (ProductId, ValidFrom))
CREATE TABLE sales.Events (
    EventId int NOT NULL CONSTRAINT PK_Events PRIMARY KEY,
    Kind varchar(20) NOT NULL,
    CustomerId int NULL,
    HappenedAt datetime NOT NULL,
    Detail sql_variant NULL)
CREATE UNIQUE INDEX UX_Events_Kind ON sales.Events (Kind, EventId DESC)
CREATE INDEX IX_Events_HappenedAt ON sales.Events (HappenedAt)
CREATE TABLE sales.Vouchers (
    Code nchar(8) NOT NULL CONSTRAINT PK_Vouchers PRIMARY KEY,
    Percentage tinyint NULL,
    Amount smallmoney NULL,
    UsedBy int NULL,
    CONSTRAINT CK_Vouchers_One CHECK ((Percentage IS NULL AND Amount IS NOT NULL) OR (Percentage IS NOT NULL AND Amount IS NULL)))
CREATE TABLE hr.Departments (
    DepartmentId smallint NOT NULL CONSTRAINT PK_Departments PRIMARY KEY,
    Name nvarchar(50) NOT NULL)
CREATE TABLE hr.Employees (
    EmployeeId int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_Employees PRIMARY KEY,
    ManagerId int NULL CONSTRAINT FK_Employees_Manager REFERENCES hr.Employees (EmployeeId),
    DepartmentId smallint NOT NULL CONSTRAINT FK_Employees_Departments REFERENCES hr.Departments (DepartmentId),
    FullName nvarchar(80) NOT NULL,
    HiredOn datetime NOT NULL,
    Badge binary(4) NOT NULL CONSTRAINT UQ_Employees_Badge UNIQUE NONCLUSTERED)
CREATE TABLE hr.Salaries (
    EmployeeId int NOT NULL,
    [Year] smallint NOT NULL,
    Amount money NOT NULL,
    Bonus float NULL,
    CONSTRAINT PK_Salaries PRIMARY KEY (EmployeeId, [Year]),
    CONSTRAINT FK_Salaries_Employees FOREIGN KEY (EmployeeId) REFERENCES hr.Employees (EmployeeId) ON DELETE CASCADE ON UPDATE CASCADE)
CREATE TABLE hr.Skills (SkillId int NOT NULL CONSTRAINT PK_Skills PRIMARY KEY, Name varchar(40) NOT NULL)
CREATE TABLE hr.EmployeeSkills (
    EmployeeId int NOT NULL CONSTRAINT FK_EmployeeSkills_Employees REFERENCES hr.Employees (EmployeeId),
    SkillId int NOT NULL CONSTRAINT FK_EmployeeSkills_Skills REFERENCES hr.Skills (SkillId),
    Since smalldatetime NULL,
    PRIMARY KEY (EmployeeId, SkillId))
CREATE TABLE hr.Absences (
    AbsenceId int IDENTITY(1, 1) NOT NULL PRIMARY KEY,
    EmployeeId int NOT NULL,
    FirstDay datetime NOT NULL,
    LastDay datetime NOT NULL,
    Reason nvarchar(100) NULL,
    CHECK (LastDay >= FirstDay))
ALTER TABLE hr.Absences WITH NOCHECK ADD CONSTRAINT FK_Absences_Employees FOREIGN KEY (EmployeeId) REFERENCES hr.Employees (EmployeeId)
CREATE TABLE hr.Notes (NoteId int NOT NULL, Body ntext NULL, Plain text NULL, Picture image NULL)
CREATE TABLE dbo.AuditLog (
    AuditId int IDENTITY(1, 1) NOT NULL CONSTRAINT PK_AuditLog PRIMARY KEY,
    TableName sysname NOT NULL,
    [Action] varchar(10) NOT NULL,
    [Rows] int NOT NULL,
    DoneAt datetime NOT NULL CONSTRAINT DF_AuditLog_DoneAt DEFAULT GETDATE())
CREATE TABLE dbo.ImportHeap (Line int NOT NULL, Content varchar(8000) NULL)
CREATE TABLE dbo.[Order Details, "quoted"] ([Id] int NOT NULL, [Unit Price] money NULL, [100 %] int NULL, [select] varchar(10) NULL,
    CONSTRAINT [PK Order Details] PRIMARY KEY ([Id]))
CREATE TABLE dbo.[dotted.name] ([a.b] int NOT NULL CONSTRAINT [PK.dotted] PRIMARY KEY, [c.d] nvarchar(10) NULL)
CREATE TABLE dbo.[bracket]]ed] ([col]]umn] int NOT NULL CONSTRAINT [DF]]bracket] DEFAULT 7)
CREATE TABLE dbo.[it's] ([isn't] int NULL, [back\slash] varchar(5) NULL)
CREATE TABLE dbo.[gifts 🎁] ([größe] nvarchar(10) NULL, [名前] nvarchar(20) NULL)
CREATE TABLE dbo.[A name of one hundred and twenty-eight characters, which is as long as a name may be in this server, so that every list is tried] (Id int NOT NULL)
GO
-- after 2000
CREATE TABLE dbo.AllTypes (
    Id int IDENTITY(-5, 5) NOT NULL CONSTRAINT PK_AllTypes PRIMARY KEY,
    ABigInt bigint NULL, ABinary binary(8) NULL, ABit bit NULL, AChar char(10) NULL, ADate date NULL, ADateTime datetime NULL,
    ADateTime2 datetime2(7) NULL, ADateTimeOffset datetimeoffset(7) NULL, ADecimal decimal(38, 10) NULL, AFloat float NULL,
    AHierarchyId hierarchyid NULL, AnImage image NULL, AMoney money NULL, AnNChar nchar(10) NULL, AnNText ntext NULL,
    ANumeric numeric(9, 2) NULL, AnNVarChar nvarchar(50) NULL, AnNVarCharMax nvarchar(max) NULL, AReal real NULL,
    ARowVersion rowversion NOT NULL, ASmallDateTime smalldatetime NULL, ASmallInt smallint NULL, ASmallMoney smallmoney NULL,
    AVariant sql_variant NULL, ASysName sysname NULL, AText text NULL, ATime time(7) NULL, ATinyInt tinyint NULL,
    AGuid uniqueidentifier NULL, AVarBinary varbinary(50) NULL, AVarBinaryMax varbinary(max) NULL, AVarChar varchar(50) NULL,
    AVarCharMax varchar(max) NULL, AnXml xml NULL)
INSERT INTO dbo.AllTypes (ABigInt, ABinary, ABit, AChar, ADate, ADateTime, ADateTime2, ADateTimeOffset, ADecimal, AFloat,
    AHierarchyId, AnImage, AMoney, AnNChar, AnNText, ANumeric, AnNVarChar, AnNVarCharMax, AReal, ASmallDateTime, ASmallInt,
    ASmallMoney, AVariant, ASysName, AText, ATime, ATinyInt, AGuid, AVarBinary, AVarBinaryMax, AVarChar, AVarCharMax, AnXml)
VALUES (9223372036854775807, 0x0102030405060708, 1, 'char', '9999-12-31', '9999-12-31T23:59:59.997',
    '9999-12-31 23:59:59.9999999', '2024-02-29 12:34:56.1234567 +05:30', 1234567890123456789012345678.0123456789, 1.7976931348623157E+308,
    '/1/2/', 0x474946, 922337203685477.5807, N'nchar', N'ntext 🎂', 1234567.89, N'nvarchar', REPLICATE(N'long ', 2000), 3.402823E38,
    '2079-06-06 23:59', 32767, 214748.3647, CAST(12.50 AS decimal(9, 2)), N'sysname', 'text', '23:59:59.9999999', 255,
    '6F9619FF-8B86-D011-B42D-00C04FC964FF', 0x00FF, 0xDEADBEEF, 'varchar', REPLICATE('long ', 2000), N'<a b="c">text</a>')
INSERT INTO dbo.AllTypes (ABigInt) VALUES (NULL)
INSERT INTO dbo.AllTypes (ABigInt, ABinary, ABit, AChar, ADate, ADateTime, ADateTime2, ADateTimeOffset, ADecimal, AFloat,
    AHierarchyId, AnImage, AMoney, AnNChar, AnNText, ANumeric, AnNVarChar, AnNVarCharMax, AReal, ASmallDateTime, ASmallInt,
    ASmallMoney, AVariant, ASysName, AText, ATime, ATinyInt, AGuid, AVarBinary, AVarBinaryMax, AVarChar, AVarCharMax, AnXml)
VALUES (-9223372036854775808, 0x, 0, '', '0001-01-01', '1753-01-01', '0001-01-01', '0001-01-01 00:00:00 +00:00', -0.0000000001,
    -2.2250738585072014E-308, '/', 0x, -922337203685477.5808, N'', N'', -1234567.89, N'', N'', -1.5, '1900-01-01', -32768, -214748.3648,
    N'text in a variant', N'', '', '00:00:00', 0, '00000000-0000-0000-0000-000000000000', 0x, 0x, '', '', N'<empty/>')
CREATE TABLE dbo.Settings (
    UserName nvarchar(60) NOT NULL CONSTRAINT PK_Settings PRIMARY KEY,
    Theme varchar(20) SPARSE NULL, PageSize int SPARSE NULL, Signature nvarchar(max) SPARSE NULL,
    UserNameLength AS (LEN(UserName)) PERSISTED,
    ChangedAt datetimeoffset(3) NOT NULL CONSTRAINT DF_Settings_ChangedAt DEFAULT SYSDATETIMEOFFSET())
INSERT INTO dbo.Settings (UserName, Theme) VALUES (N'anna', 'dark'), (N'bertil', NULL)
CREATE TABLE hr.Documents (
    Node hierarchyid NOT NULL CONSTRAINT PK_Documents PRIMARY KEY,
    Title nvarchar(100) NOT NULL, Properties xml NULL, Content varbinary(max) NULL, Changed rowversion NOT NULL)
INSERT INTO hr.Documents (Node, Title, Properties) VALUES ('/', N'All', NULL), ('/1/', N'Rules', N'<p pages="3"/>'), ('/1/1/', N'Holidays', NULL)
CREATE INDEX IX_Events_Customer ON sales.Events (CustomerId, HappenedAt DESC) INCLUDE (Kind, Detail) WHERE CustomerId IS NOT NULL
CREATE INDEX IX_Events_Old ON sales.Events (Kind) WITH (FILLFACTOR = 80, PAD_INDEX = ON)
ALTER INDEX IX_Events_Old ON sales.Events DISABLE
GO
INSERT INTO sales.Regions (RegionId, Name) VALUES (1, N'North'), (2, N'South'), (3, N'Übersee')
INSERT INTO sales.Stores (RegionId, Name, Phone, IsOpen, OpenedOn)
SELECT id % 3 + 1, N'Store no. ' + CAST(id AS nvarchar(10)), CASE WHEN id % 4 > 0 THEN '+49 555 ' + CAST(1000 + id AS varchar(8)) END, CASE WHEN id % 7 > 0 THEN 1 ELSE 0 END, DATEADD(day, id * 37, '2001-05-01')
FROM generate_rows(40) g
INSERT INTO sales.Carriers (Code, Name, PricePerKg) VALUES ('BIKE', N'Nørrebro Cykler', 1.25), ('POST', N'The Post', 2.5), ('FAST', N'Same Day', 12)
INSERT INTO sales.Shipments (OrderId, ParcelNumber, Carrier, WeightKg)
SELECT o.OrderId, g.id, CASE o.OrderId % 3 WHEN 0 THEN 'BIKE' WHEN 1 THEN 'POST' ELSE 'FAST' END, 0.5 * g.id
FROM dbo.Orders o CROSS JOIN generate_rows(3) g
WHERE o.Status = 'shipped' AND g.id <= o.OrderId % 3 + 1
INSERT INTO sales.Invoices (OrderId, Net, IssuedOn)
SELECT o.OrderId, SUM(l.LineTotal), DATEADD(day, 1, MIN(o.OrderedAt)) FROM dbo.Orders o JOIN dbo.OrderLines l ON l.OrderId = o.OrderId GROUP BY o.OrderId ORDER BY o.OrderId
INSERT INTO sales.Payments (InvoiceId, Amount, Method)
SELECT InvoiceId, Gross, CASE InvoiceId % 3 WHEN 0 THEN 'card' WHEN 1 THEN 'transfer' ELSE 'cash' END FROM sales.Invoices WHERE InvoiceId % 4 > 0
INSERT INTO sales.PriceHistory (ProductId, ValidFrom, Price)
SELECT p.ProductId, DATEADD(month, -1 * g.id, '2024-01-01'), p.Price * (100 - g.id) / 100 FROM dbo.Products p CROSS JOIN generate_rows(48) g
INSERT INTO sales.Events (EventId, Kind, CustomerId, HappenedAt, Detail)
SELECT id, CASE id % 5 WHEN 0 THEN 'visit' WHEN 1 THEN 'search' WHEN 2 THEN 'basket' WHEN 3 THEN 'order' ELSE 'complaint' END,
       CASE WHEN id % 11 > 0 THEN id % 12 + 1 END, DATEADD(minute, id * 17, '2023-01-01'),
       CASE id % 4 WHEN 0 THEN CAST(id AS sql_variant) WHEN 1 THEN CAST(N'word ' + CAST(id AS nvarchar(10)) AS sql_variant) WHEN 2 THEN CAST(id / 4.0 AS sql_variant) END
FROM generate_rows(2500) g
INSERT INTO sales.Vouchers (Code, Percentage, Amount, UsedBy)
SELECT N'V' + RIGHT(N'0000000' + CAST(id * 7919 AS nvarchar(10)), 7), CASE WHEN id % 2 = 0 THEN id % 50 + 1 END, CASE WHEN id % 2 = 1 THEN id * 0.5 END, CASE WHEN id % 3 = 0 THEN id % 12 + 1 END
FROM generate_rows(100) g
INSERT INTO hr.Departments (DepartmentId, Name) VALUES (1, N'Management'), (2, N'Sales'), (3, N'Warehouse'), (4, N'Buchhaltung')
INSERT INTO hr.Employees (ManagerId, DepartmentId, FullName, HiredOn, Badge) VALUES (NULL, 1, N'Ada Lindqvist', '1999-04-01', 0x00000001)
INSERT INTO hr.Employees (ManagerId, DepartmentId, FullName, HiredOn, Badge)
SELECT CASE WHEN id < 10 THEN 1 ELSE id / 10 END, id % 3 + 2, ISNULL(name, N'Nemo ' + CAST(id AS nvarchar(10))), DATEADD(day, id * 19, '2004-01-05'), CAST(id + 1 AS binary(4)) FROM generate_rows(150) g
INSERT INTO hr.Salaries (EmployeeId, [Year], Amount, Bonus)
SELECT e.EmployeeId, 2020 + g.id, 30000 + e.EmployeeId * 10 + g.id * 500, CASE WHEN e.EmployeeId % 3 = 0 THEN e.EmployeeId / 7E0 END
FROM hr.Employees e CROSS JOIN generate_rows(4) g
INSERT INTO hr.Skills (SkillId, Name) VALUES (1, 'Forklift'), (2, 'Greek'), (3, 'First aid'), (4, 'Double-entry bookkeeping')
INSERT INTO hr.EmployeeSkills (EmployeeId, SkillId, Since)
SELECT EmployeeId, EmployeeId % 4 + 1, HiredOn FROM hr.Employees WHERE EmployeeId % 2 = 0
INSERT INTO hr.Absences (EmployeeId, FirstDay, LastDay, Reason)
SELECT id % 151 + 1, DATEADD(day, id * 3, '2022-01-03'), DATEADD(day, id * 3 + id % 5, '2022-01-03'), CASE id % 3 WHEN 0 THEN N'Holiday' WHEN 1 THEN N'Ill' END FROM generate_rows(300) g
INSERT INTO hr.Notes (NoteId, Body, Plain, Picture) VALUES (1, N'Ring back: Кофейня', 'plain', 0x424D), (2, NULL, NULL, NULL)
INSERT INTO dbo.ImportHeap (Line, Content) SELECT id, code + ';' + CAST(amount AS varchar(30)) FROM generate_rows(200) g
INSERT INTO dbo.[Order Details, "quoted"] ([Id], [Unit Price], [100 %], [select]) VALUES (1, 9.99, 100, 'from'), (2, NULL, NULL, NULL)
INSERT INTO dbo.[dotted.name] VALUES (1, N'x.y')
INSERT INTO dbo.[bracket]]ed] VALUES (1)
INSERT INTO dbo.[it's] VALUES (1, '\')
INSERT INTO dbo.[gifts 🎁] VALUES (N'groß', N'花子')
GO
CREATE VIEW sales.CustomerOrders AS
SELECT c.CustomerId, c.CompanyName, o.OrderId, o.OrderedAt, o.Status
FROM dbo.Customers AS c
JOIN dbo.Orders AS o ON o.CustomerId = c.CustomerId
GO
CREATE VIEW sales.OrderTotals WITH SCHEMABINDING AS
SELECT l.OrderId, COUNT_BIG(*) AS Lines, SUM(l.Quantity * l.UnitPrice) AS Total
FROM dbo.OrderLines AS l
GROUP BY l.OrderId
GO
CREATE UNIQUE CLUSTERED INDEX CX_OrderTotals ON sales.OrderTotals (OrderId)
GO
CREATE VIEW hr.[Staff, by department] AS
SELECT d.Name AS [Department name], COUNT(*) AS [Number of people]
FROM hr.Departments AS d
JOIN hr.Employees AS e ON e.DepartmentId = d.DepartmentId
GROUP BY d.Name
GO
CREATE VIEW dbo.SecretPrices WITH ENCRYPTION AS
SELECT ProductId, Price * 0.6 AS Cost FROM dbo.Products
GO
CREATE FUNCTION sales.OrderTotal (@OrderId int) RETURNS money AS
BEGIN
    DECLARE @total money
    SELECT @total = SUM(LineTotal) FROM dbo.OrderLines WHERE OrderId = @OrderId
    RETURN ISNULL(@total, 0)
END
GO
CREATE FUNCTION sales.OrdersOf (@CustomerId int) RETURNS TABLE AS
RETURN (SELECT OrderId, OrderedAt, Status FROM dbo.Orders WHERE CustomerId = @CustomerId)
GO
CREATE FUNCTION hr.Subordinates (@EmployeeId int)
RETURNS @found TABLE (EmployeeId int NOT NULL PRIMARY KEY, FullName nvarchar(80) NOT NULL, Depth int NOT NULL) AS
BEGIN
    DECLARE @depth int, @added int
    SELECT @depth = 1, @added = 1
    INSERT INTO @found SELECT EmployeeId, FullName, 1 FROM hr.Employees WHERE ManagerId = @EmployeeId
    WHILE @added > 0
    BEGIN
        INSERT INTO @found
        SELECT e.EmployeeId, e.FullName, @depth + 1
        FROM hr.Employees e JOIN @found f ON f.EmployeeId = e.ManagerId AND f.Depth = @depth
        SELECT @added = @@ROWCOUNT, @depth = @depth + 1
    END
    RETURN
END
GO
CREATE PROCEDURE sales.PlaceOrder
    @CustomerId int, @ProductId int, @Quantity smallint = 1, @Remark nvarchar(200) = NULL,
    @OrderId int OUTPUT, @Total money = NULL OUTPUT
AS
-- Orders a product for a customer; the status is 1 when there is not enough of it.
SET NOCOUNT ON
IF NOT EXISTS (SELECT * FROM dbo.Products WHERE ProductId = @ProductId AND InStock >= @Quantity)
    RETURN 1
INSERT INTO dbo.Orders (CustomerId, OrderedAt, Remark) VALUES (@CustomerId, GETDATE(), @Remark)
SELECT @OrderId = SCOPE_IDENTITY()
INSERT INTO dbo.OrderLines (OrderId, LineNumber, ProductId, Quantity, UnitPrice)
SELECT @OrderId, 1, ProductId, @Quantity, Price FROM dbo.Products WHERE ProductId = @ProductId
UPDATE dbo.Products SET InStock = InStock - @Quantity WHERE ProductId = @ProductId
SELECT @Total = sales.OrderTotal(@OrderId)
RETURN 0
GO
CREATE PROCEDURE dbo.[List things; "all" of them] @Pattern nvarchar(40) = N'%' AS
SELECT name, xtype FROM sysobjects WHERE name LIKE @Pattern ORDER BY name
GO
CREATE PROCEDURE dbo.SecretProcedure WITH ENCRYPTION AS
SELECT 42 AS answer
GO
CREATE PROCEDURE hr.RaiseSalaries @Percentage decimal(5, 2) = 2.5, @Year smallint, @Raised int OUTPUT AS
UPDATE hr.Salaries SET Amount = Amount * (1 + @Percentage / 100) WHERE [Year] = @Year
SELECT @Raised = @@ROWCOUNT
GO
-- after 2000
CREATE PROCEDURE sales.AddLines @OrderId int, @Lines sales.LineList READONLY AS
BEGIN TRY
    INSERT INTO dbo.OrderLines (OrderId, LineNumber, ProductId, Quantity, UnitPrice)
    SELECT @OrderId, l.LineNumber, l.ProductId, l.Quantity, p.Price FROM @Lines l JOIN dbo.Products p ON p.ProductId = l.ProductId
END TRY
BEGIN CATCH
    DECLARE @message nvarchar(400) = N'The lines cannot be added: ' + ERROR_MESSAGE()
    RAISERROR(@message, 16, 1)
END CATCH
GO
CREATE TRIGGER dbo.Orders_Audit ON dbo.Orders AFTER INSERT, UPDATE, DELETE AS
BEGIN
    SET NOCOUNT ON
    DECLARE @new int, @old int
    SELECT @new = COUNT(*) FROM inserted
    SELECT @old = COUNT(*) FROM deleted
    IF @new + @old > 0
        INSERT INTO dbo.AuditLog (TableName, [Action], [Rows])
        VALUES (N'Orders', CASE WHEN @old = 0 THEN 'insert' WHEN @new = 0 THEN 'delete' ELSE 'update' END, CASE WHEN @new > 0 THEN @new ELSE @old END)
END
GO
CREATE TRIGGER sales.Payments_NoDelete ON sales.Payments INSTEAD OF DELETE AS
RAISERROR('Payments stay.', 16, 1)
GO
CREATE TRIGGER hr.Employees_Check ON hr.Employees FOR UPDATE AS
IF UPDATE(Badge)
    RAISERROR('A badge is for life.', 16, 1)
GO
ALTER TABLE hr.Employees DISABLE TRIGGER Employees_Check
ALTER TABLE hr.Absences NOCHECK CONSTRAINT FK_Absences_Employees
EXEC sp_addextendedproperty N'MS_Description', N'Who buys', N'SCHEMA', N'dbo', N'TABLE', N'Customers'
EXEC sp_addextendedproperty N'MS_Description', N'Two letters', N'SCHEMA', N'dbo', N'TABLE', N'Customers', N'COLUMN', N'Country'
