-- Was everything read?
SELECT (SELECT count(*) FROM cells) || ' rows';
SELECT count(*) || ' inputs: ' || sum(outcome = 'rows') || ' with rows, ' ||
  sum(outcome = 'no rows') || ' without, ' || sum(outcome = 'failed') || ' failed, ' ||
  sum(outcome = 'changed') || ' changed while they were read'
FROM outcomes WHERE how <> 'parent' OR outcome IN ('failed', 'changed');
SELECT outcome || ': ' || shown || coalesce(': ' || nullif(error, ''), '')
FROM outcomes WHERE outcome IN ('failed', 'changed') ORDER BY run;
SELECT count(*) || ' lines are no rows: see the table other_lines' FROM other_lines
WHERE what = 'no row' HAVING count(*) > 0;
SELECT iif(sum(outcome IN ('failed', 'changed')), 'Not everything was read.', 'Everything was read.')
FROM outcomes;
