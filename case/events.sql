-- A line for each time.
SELECT json_object(
  'message', kind || ': ' || iif(who = '', '', who || ': ') || address,
  'datetime', strftime('%Y-%m-%dT%H:%M:%S', utc, 'unixepoch') || substr(time, 20) || '+00:00',
  'timestamp_desc', event, 'kind', kind, 'who', who, 'address', address,
  'cautions', json((SELECT json_group_array(caution) FROM marks WHERE marks.row = moments.row)),
  'mod_date', mod_date, 'mod_time', mod_time,
  'access_date', access_date, 'access_time', access_time,
  'expires_date', expires_date, 'expires_time', expires_time,
  'sync_date', sync_date, 'sync_time', sync_time,
  'type', type, 'url', url, 'user', user, 'filename', filename,
  'size', size, 'directory', directory, 'count', count, 'header', header, 'source', moments.source,
  'row', moments.row)
FROM moments JOIN cells ON cells.rowid = moments.row WHERE utc IS NOT NULL;
