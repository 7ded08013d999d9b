USE shop
PRINT 'Hello from the sample server.'
SELECT TOP 5 * FROM Customers
SELECT CAST(12345678901234567890.123456789 AS decimal(38, 9)) AS exact,
       CAST('2020-01-02 03:04:05.1234567' AS datetime2(7)) AS [to the digit],
       CAST(1234.5 AS money) AS money,
       N'naïve 🐘' AS text,
       0x00FF AS bytes,
       CAST(NULL AS int) AS nothing
UPDATE Products SET Price = Price * 1.1 WHERE Price < 100
RAISERROR('A warning, which is no error.', 10, 1)
SELECT NoSuchColumn FROM Customers
