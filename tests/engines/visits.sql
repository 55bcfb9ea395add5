-- Rows for the clause kinds, loaded beside the sample database on both engines. Today is Friday
-- 15 March 2024, the clock 10:30.
CREATE TABLE "Visits" (
  "ID" INTEGER PRIMARY KEY,
  "Name" TEXT NOT NULL,
  "Note" TEXT,
  "Amount" DOUBLE PRECISION,
  "Paid" BOOLEAN NOT NULL,
  "Day" DATE NOT NULL,
  "Start" TIME NOT NULL
);
INSERT INTO "Visits" VALUES
  (1, 'Ana', 'likes 50% off', 10.5, TRUE, '2024-03-15', '10:30:00'),
  (2, 'O''Brien', 'a_b', NULL, FALSE, '2024-03-11', '09:00:00'),
  (3, 'Bogdan', '', 250, TRUE, '2024-02-20', '12:00:00'),
  (4, 'anca', NULL, 80, FALSE, '2023-12-31', '10:30:00'),
  (5, 'Dan', 'back\slash', -3, TRUE, '2024-03-18', '18:45:00');
-- A column whose name would end a string literal that runs on past its closing quote.
CREATE TABLE "Guests" (
  "ID" INTEGER PRIMARY KEY,
  "Name" TEXT NOT NULL,
  "x'::char OR 1=1) --" TEXT
);
INSERT INTO "Guests" VALUES (1, 'Ana', 'a'), (2, 'Dan', 'a'), (3, 'Ion', 'a');
