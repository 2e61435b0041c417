-- Was everything read?
SELECT 'Inputs: ' || count(*) || '; with rows ' || sum(outcome = 'rows') || ', without ' ||
  sum(outcome = 'no rows') || ', failed ' || sum(outcome = 'failed') ||
  ', changed while they were read ' || sum(outcome = 'changed')
FROM outcomes WHERE how <> 'parent' OR outcome = 'changed';
SELECT 'Rows: ' || count(*) FROM cells;
SELECT 'Lines that are no rows: ' || count(*) || ', as other_lines tells' FROM other_lines
WHERE what = 'no row' HAVING count(*) > 0;
SELECT 'Passed over below folders: files ' || sum(value) FILTER (WHERE name = 'files passed over')
  || ', links ' || sum(value) FILTER (WHERE name = 'links passed over')
  || '; files that may be disks or images, to be named if they are to be searched: '
  || sum(value) FILTER (WHERE name = 'files that may be disks or images')
FROM facts WHERE name IN ('files passed over', 'links passed over',
  'files that may be disks or images') HAVING sum(value) > 0;
SELECT outcome || ': ' || shown || coalesce(': ' || nullif(error, ''), '')
FROM outcomes WHERE outcome IN ('failed', 'changed') ORDER BY run;
SELECT iif(sum(outcome IN ('failed', 'changed')), 'Not all inputs were read.',
  'All inputs were read.')
FROM outcomes;
