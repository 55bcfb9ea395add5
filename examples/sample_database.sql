-- The sample database of the examples: the tables and columns that orders.xml,
-- parameter_query.xml and legal_documents.xml name. Dates are day numbers (days since
-- 30 December 1899: 45352 is 1 March 2024), as the query definitions write them.

CREATE TABLE Customers (
  ID INTEGER PRIMARY KEY,
  Name TEXT NOT NULL,
  City TEXT NOT NULL
);
INSERT INTO Customers VALUES
  (1, 'Ana Popescu', 'Cluj'),
  (2, 'Bogdan Ionescu', 'Iasi'),
  (3, 'Carmen Dumitru', 'Brasov'),
  (4, 'Dan O''Neill', 'Cluj'),
  (5, 'Elena Marin', 'Timisoara'),
  (6, 'Florin Stan', 'Iasi');

CREATE TABLE Orders (
  [Order No] INTEGER PRIMARY KEY,
  CustomerID INTEGER NOT NULL REFERENCES Customers (ID),
  [Order Day] INTEGER NOT NULL,
  Quantity INTEGER NOT NULL,
  [Unit Price] REAL NOT NULL,
  Status TEXT NOT NULL
);
INSERT INTO Orders VALUES
  (1001, 1, 45342, 3, 12.5, 'livrata'),
  (1002, 1, 45356, 2, 40.0, 'livrata'),
  (1003, 2, 45363, 5, 7.2, 'in curs'),
  (1004, 3, 45363, 4, 15.0, 'livrata'),
  (1005, 4, 45369, 1, 99.9, 'livrata'),
  (1006, 2, 45373, 10, 3.5, 'anulata'),
  (1007, 6, 45379, 2, 22.0, 'in asteptare'),
  (1008, 4, 45379, 6, 8.75, 'livrata'),
  (1009, 5, 45384, 3, 10.0, 'livrata');

CREATE TABLE Acte (
  Numar INTEGER NOT NULL,
  Titlu TEXT NOT NULL,
  Emitent TEXT NOT NULL,
  Data_emiterii INTEGER NOT NULL,
  Data_publicarii INTEGER NOT NULL,
  Textul_documentului TEXT NOT NULL
);
INSERT INTO Acte VALUES
  (53, 'Legea nr. 53/2003 - Codul muncii', 'Parlamentul', 37645, 37657,
   'Contractul individual de munca se incheie pe durata nedeterminata; concediul de odihna anual este garantat.'),
  (40, 'Legea nr. 40/2011 privind modificarea Codului muncii', 'Parlamentul', 40633, 40635,
   'Se modifica regulile privind contractul de munca pe durata determinata.'),
  (905, 'Hotararea nr. 905/2017 privind registrul general de evidenta a salariatilor', 'Guvernul',
   43083, 43084, 'Registrul cuprinde contractul de munca al fiecarui salariat.'),
  (250, 'Hotararea nr. 250/1992 privind concediul de odihna', 'Guvernul', 33697, 33708,
   'Concediul de odihna si alte concedii ale salariatilor din administratia publica.');
