-- A line for each visit or use, its time as access. Of a time of 0, unlike -1, mactime makes a line.
SELECT '0|' || replace(kind || ': ' || event || iif(who = '', '', ' of ' || who) || ': ' || address
  || ' (' || source || ', row ' || row || ')', '|', '\x7C') || '|0|0|0|0|0|' || utc || '|-1|-1|-1'
FROM moments WHERE utc IS NOT NULL;
