-- Was everything read?
SELECT 'Inputs: ' || count(*) || '; with rows ' || sum(outcome = 'rows') || ', without ' ||
  sum(outcome = 'no rows') || ', failed ' || sum(outcome = 'failed') ||
  ', changed while they were read ' || sum(outcome = 'changed')
FROM outcomes WHERE how <> 'parent' OR outcome = 'changed';
SELECT 'Rows: ' || count(*) FROM cells;
SELECT 'Lines that are no rows: ' || count(*) || ', in the table other_lines' FROM other_lines
WHERE what = 'no row' HAVING count(*) > 0;
SELECT outcome || ': ' || shown || coalesce(': ' || nullif(error, ''), '')
FROM outcomes WHERE outcome IN ('failed', 'changed') ORDER BY run;
SELECT iif(sum(outcome IN ('failed', 'changed')), 'Not everything was read.',
  'Everything was read.')
FROM outcomes;
