-- The cautions of each row, worked out once.
CREATE TEMP TABLE marks AS
SELECT row, source, number, caution, rows FROM cautions JOIN known_cautions USING (caution)
ORDER BY row, number;
CREATE INDEX temp.marks_row ON marks (row);
