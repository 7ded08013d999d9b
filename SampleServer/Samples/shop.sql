-- Customers, products and orders.
CREATE TABLE Customers (
    CustomerId   int IDENTITY(1,1) NOT NULL CONSTRAINT PK_Customers PRIMARY KEY,
    CompanyName  nvarchar(60) NOT NULL,
    Contact      nvarchar(40) NULL,
    City         nvarchar(30) NOT NULL,
    Country      char(2) NOT NULL,
    Phone        varchar(24) NULL,
    CreditLimit  money NOT NULL DEFAULT 1000,
    Discount     decimal(5,4) NULL,
    CustomerSince date NOT NULL,
    IsActive     bit NOT NULL DEFAULT 1,
    Notes        nvarchar(max) NULL)

CREATE TABLE Products (
    ProductId    int NOT NULL CONSTRAINT PK_Products PRIMARY KEY,
    Sku          varchar(12) NOT NULL CONSTRAINT UQ_Products_Sku UNIQUE,
    Name         nvarchar(80) NOT NULL,
    Price        money NOT NULL,
    WeightKg     decimal(9,3) NULL,
    Rating       real NULL,
    InStock      smallint NOT NULL DEFAULT 0,
    Discontinued bit NOT NULL DEFAULT 0,
    Thumbnail    varbinary(64) NULL,
    RowId        uniqueidentifier NOT NULL DEFAULT NEWID(),
    AddedAt      datetime2(3) NOT NULL)

CREATE TABLE Orders (
    OrderId      int IDENTITY(1001,1) NOT NULL CONSTRAINT PK_Orders PRIMARY KEY,
    CustomerId   int NOT NULL,
    OrderedAt    datetime NOT NULL,
    PromisedOn   date NULL,
    ShippedAt    datetimeoffset(0) NULL,
    PickupTime   time(0) NULL,
    Freight      smallmoney NOT NULL DEFAULT 0,
    Status       varchar(10) NOT NULL DEFAULT 'open',
    Remark       nvarchar(200) NULL)

CREATE TABLE OrderLines (
    OrderId      int NOT NULL,
    LineNumber   tinyint NOT NULL,
    ProductId    int NOT NULL,
    Quantity     smallint NOT NULL,
    UnitPrice    money NOT NULL,
    Discount     decimal(5,4) NOT NULL DEFAULT 0,
    LineTotal    AS CAST(Quantity * UnitPrice * (1 - Discount) AS decimal(19,4)),
    CONSTRAINT PK_OrderLines PRIMARY KEY (OrderId, LineNumber))
GO
INSERT INTO Customers (CompanyName, Contact, City, Country, Phone, CreditLimit, Discount, CustomerSince, IsActive, Notes)
VALUES (N'Café Zürich', N'Jürg Müller', N'Zürich', 'CH', '+41 44 555 01 10', 25000, 0.0500, '2015-03-02', 1, N'Delivers before 7 a.m. only'),
       (N'Smörgås & Co', N'Åsa Öberg', N'Malmö', 'SE', '+46 40 555 0199', 18000, NULL, '2016-11-21', 1, NULL),
       (N'Taquería "El Niño"', N'Iñigo Peña', N'Ciudad de México', 'MX', NULL, 7500.50, 0.0250, '2019-06-30', 1, N'Says: "siempre a tiempo"'),
       (N'東京文具店', N'佐藤 花子', N'東京', 'JP', '+81 3 5550 0123', 120000, 0.1250, '2012-01-04', 1, N'ご注文ありがとうございます'),
       (N'O''Reilly''s Hardware', N'Siobhán O''Reilly', N'Galway', 'IE', '+353 91 555 018', 3200, NULL, '2020-02-29', 1, NULL),
       (N'Кофейня «Пушкин»', N'Анна Каренина', N'Рига', 'LV', NULL, 900, NULL, '2021-09-01', 0, N'Closed for renovation'),
       (N'Boulangerie Lefèvre', N'Chloé Lefèvre', N'Lyon', 'FR', '+33 4 55 50 12 34', 15000, 0.0300, '2014-07-14', 1, NULL),
       (N'Łódź Papier', N'Wojciech Żak', N'Łódź', 'PL', '+48 42 555 01 77', 6400, NULL, '2018-05-03', 1, N'Invoice by e-mail' + CHAR(13) + CHAR(10) + N'Copy to the accountant'),
       (N'Πλάτων Βιβλία', NULL, N'Αθήνα', 'GR', NULL, 2100, NULL, '2022-03-25', 1, NULL),
       (N'100 % Natural, Inc.', N'Robert Tables', N'Portland', 'US', '+1 503 555 0142', 48000, 0.0750, '2011-10-10', 1, N'Name starts with digits'),
       (N'Emoji Gifts 🎁', N'Zoë Quinn', N'Wellington', 'NZ', '+64 4 555 0110', 5000, NULL, '2023-12-24', 1, N'🎂 since 2023'),
       (N'Nørrebro Cykler', N'Søren Kjær', N'København', 'DK', '+45 55 50 12 12', 9800, 0.0100, '2017-08-08', 0, NULL)
GO
INSERT INTO Products (ProductId, Sku, Name, Price, WeightKg, Rating, InStock, Discontinued, Thumbnail, AddedAt)
VALUES (1, 'PEN-001', N'Fountain pen, black', 49.9000, 0.035, 4.5, 120, 0, 0x89504E470D0A1A0A, '2015-01-05 08:00:00.000'),
       (2, 'PEN-002', N'Ballpoint pen (box of 12)', 11.5000, 0.150, 3.75, 800, 0, 0x89504E47, '2015-01-05 08:00:01.250'),
       (3, 'INK-001', N'Ink, midnight blue 50 ml', 14.2500, 0.210, 4.75, 64, 0, NULL, '2015-02-11 14:30:00.123'),
       (4, 'PAP-001', N'Notebook A5, dotted', 8.9900, 0.280, 4.25, 340, 0, 0xFFD8FFE0, '2016-06-01 00:00:00.000'),
       (5, 'PAP-002', N'Writing paper "Büttenrand"', 32.0000, 0.950, NULL, 12, 0, NULL, '2016-06-01 23:59:59.999'),
       (6, 'DSK-001', N'Desk lamp', 79.0000, 1.800, 3.5, 25, 0, 0x47494638, '2018-09-17 10:10:10.100'),
       (7, 'DSK-002', N'Leather desk pad', 129.0000, 1.250, 5, 6, 0, NULL, '2018-09-17 10:10:10.101'),
       (8, 'DSK-003', N'Paper clips (1000)', 3.4900, 0.420, 2.25, 1500, 0, 0x00FF00FF, '2019-03-03 03:03:03.003'),
       (9, 'OLD-001', N'Typewriter ribbon', 6.7500, 0.080, 1.5, 0, 1, 0x, '2015-01-05 08:00:00.000'),
       (10, 'GFT-001', N'Gift card', 25.0000, NULL, NULL, 0, 0, NULL, '2022-12-01 12:00:00.000')
GO
INSERT INTO Orders (CustomerId, OrderedAt, PromisedOn, ShippedAt, PickupTime, Freight, Status, Remark)
VALUES (1, '2024-01-08T09:15:00.003', '2024-01-12', '2024-01-11 16:20:00 +01:00', NULL, 12.5000, 'shipped', NULL),
       (4, '2024-01-09T23:59:59.997', '2024-01-20', '2024-01-18 08:00:00 +09:00', NULL, 84.2000, 'shipped', N'急ぎ'),
       (10, '2024-02-29T12:00:00', '2024-03-04', '2024-03-01 07:30:00 -08:00', NULL, 35.7500, 'shipped', N'Leap day'),
       (2, '2024-03-15T10:45:30.500', NULL, NULL, '14:30:00', 0, 'pickup', NULL),
       (7, '2024-03-31T02:30:00', '2024-04-05', '2024-04-04 11:11:11 +02:00', NULL, 9.9900, 'shipped', N'Mind the dog'),
       (1, '2024-05-01T08:00:00', '2024-05-06', NULL, NULL, 12.5000, 'open', NULL),
       (11, '2024-06-21T20:51:00', '2024-06-30', NULL, NULL, 22.0000, 'open', N'Wrap as a gift 🎀'),
       (5, '2024-07-04T16:05:12.347', NULL, NULL, '09:00:00', 0, 'cancelled', N'Customer''s wish'),
       (10, '2024-08-19T11:22:33.443', '2024-08-23', NULL, NULL, 35.7500, 'open', NULL),
       (8, '2024-09-01T00:00:00', '2024-09-08', NULL, NULL, 15.2500, 'open', NULL)

INSERT INTO OrderLines (OrderId, LineNumber, ProductId, Quantity, UnitPrice, Discount)
VALUES (1001, 1, 1, 10, 49.90, 0.05), (1001, 2, 3, 10, 14.25, 0.05), (1001, 3, 8, 2, 3.49, 0),
       (1002, 1, 2, 500, 10.99, 0.125), (1002, 2, 4, 200, 8.99, 0.125), (1002, 3, 5, 40, 32.00, 0.125),
       (1003, 1, 6, 15, 79.00, 0.075), (1003, 2, 7, 3, 129.00, 0.075),
       (1004, 1, 4, 25, 8.99, 0),
       (1005, 1, 5, 6, 32.00, 0.03), (1005, 2, 1, 1, 49.90, 0),
       (1006, 1, 1, 5, 49.90, 0.05), (1006, 2, 2, 20, 11.50, 0.05),
       (1007, 1, 10, 4, 25.00, 0), (1007, 2, 7, 1, 129.00, 0.1),
       (1008, 1, 8, 12, 3.49, 0),
       (1009, 1, 6, 2, 79.00, 0.075), (1009, 2, 3, 30, 14.25, 0.075), (1009, 3, 4, 60, 8.99, 0.075),
       (1010, 1, 2, 36, 11.50, 0), (1010, 2, 9, 8, 6.75, 0.3333)
