-- The sample database of the examples: the tables and columns that orders.xml,
-- parameter_query.xml and legal_documents.xml name. Written so that SQLite and PostgreSQL both
-- load it as it stands: every name between double quotes (PostgreSQL keeps their letter case),
-- dates as DATE columns holding ISO dates (SQLite stores the text '2024-03-01', which sorts and
-- compares as the date does).

CREATE TABLE "Customers" (
  "ID" INTEGER PRIMARY KEY,
  "Name" TEXT NOT NULL,
  "City" TEXT NOT NULL
);
INSERT INTO "Customers" VALUES
  (1, 'Ana Popescu', 'Cluj'),
  (2, 'Bogdan Ionescu', 'Iasi'),
  (3, 'Carmen Dumitru', 'Brasov'),
  (4, 'Dan O''Neill', 'Cluj'),
  (5, 'Elena Marin', 'Timisoara'),
  (6, 'Florin Stan', 'Iasi');

CREATE TABLE "Orders" (
  "Order No" INTEGER PRIMARY KEY,
  "CustomerID" INTEGER NOT NULL REFERENCES "Customers" ("ID"),
  "Order Day" DATE NOT NULL,
  "Quantity" INTEGER NOT NULL,
  "Unit Price" DOUBLE PRECISION NOT NULL,
  "Status" TEXT NOT NULL
);
INSERT INTO "Orders" VALUES
  (1001, 1, '2024-02-20', 3, 12.5, 'livrata'),
  (1002, 1, '2024-03-05', 2, 40.0, 'livrata'),
  (1003, 2, '2024-03-12', 5, 7.2, 'in curs'),
  (1004, 3, '2024-03-12', 4, 15.0, 'livrata'),
  (1005, 4, '2024-03-18', 1, 99.9, 'livrata'),
  (1006, 2, '2024-03-22', 10, 3.5, 'anulata'),
  (1007, 6, '2024-03-28', 2, 22.0, 'in asteptare'),
  (1008, 4, '2024-03-28', 6, 8.75, 'livrata'),
  (1009, 5, '2024-04-02', 3, 10.0, 'livrata');

CREATE TABLE "Acte" (
  "Numar" INTEGER NOT NULL,
  "Titlu" TEXT NOT NULL,
  "Emitent" TEXT NOT NULL,
  "Data_emiterii" DATE NOT NULL,
  "Data_publicarii" DATE NOT NULL,
  "Textul_documentului" TEXT NOT NULL
);
INSERT INTO "Acte" VALUES
  (53, 'Legea nr. 53/2003 - Codul muncii', 'Parlamentul', '2003-01-24', '2003-02-05',
   'Contractul individual de munca se incheie pe durata nedeterminata; concediul de odihna anual este garantat.'),
  (40, 'Legea nr. 40/2011 privind modificarea Codului muncii', 'Parlamentul', '2011-03-31',
   '2011-04-02', 'Se modifica regulile privind contractul de munca pe durata determinata.'),
  (905, 'Hotararea nr. 905/2017 privind registrul general de evidenta a salariatilor', 'Guvernul',
   '2017-12-14', '2017-12-15', 'Registrul cuprinde contractul de munca al fiecarui salariat.'),
  (250, 'Hotararea nr. 250/1992 privind concediul de odihna', 'Guvernul', '1992-04-03',
   '1992-04-14', 'Concediul de odihna si alte concedii ale salariatilor din administratia publica.'),
  (88, 'Legea nr. 88/2023 pentru modificarea Codului muncii', 'Parlamentul', '2023-03-30',
   '2023-04-03', 'Contractul de munca si concediul de odihna se aplica si salariatilor in telemunca.');
