-- The packaged news file. Every column is read and written as text, and
-- "select *" returns them in this order. The program creates no table: the
-- file is built from this script and copied to Documents at first start.
--
-- news_table: every downloaded story with its read mark ("NO" unread,
-- "YES" read). `id` is the key, so a story downloaded again keeps its mark
-- and the second insert fails with a constraint error that is only logged.
CREATE TABLE news_table (
  added_by_user_id TEXT,
  added_by_users TEXT,
  content_manger_name TEXT,
  created_date TEXT,
  id TEXT PRIMARY KEY,
  new_title TEXT,
  news_description TEXT,
  news_image_hd TEXT,
  news_image_normal TEXT,
  news_media_type TEXT,
  news_source_url TEXT,
  status TEXT
);

-- bookmark_table: the reader's saved stories. `id` is not a key here:
-- bookmarking one story twice stores two rows, and removing the bookmark
-- deletes every row with that id.
CREATE TABLE bookmark_table (
  added_by_user_id TEXT,
  added_by_users TEXT,
  content_manger_name TEXT,
  created_date TEXT,
  id TEXT,
  new_title TEXT,
  news_description TEXT,
  news_image_hd TEXT,
  news_image_normal TEXT,
  news_media_type TEXT,
  news_source_url TEXT
);
