-- A line for each visit or use, its time as access.
SELECT '0|' || replace(kind || ': ' || event || iif(who = '', '', ' of ' || who) || ': ' || address
  || ' (' || source || ', row ' || row || ')', '|', '\x7C') || '|0|0|0|0|0|' || utc || '|0|0|0'
FROM moments WHERE utc IS NOT NULL;
