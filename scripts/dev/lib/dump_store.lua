-- SPDX-FileCopyrightText: 2026 The Ostrafel developers
-- SPDX-License-Identifier: Apache-2.0

-- Returns all that the server holds: a line "key, type, field or index, value" for every record,
-- with tabs between. Keys and fields are sorted, what begins with "&&" last. Control characters and
-- bytes that are not UTF-8 come as \xHH: no data can break a line or drive a terminal.

local utf8_characters = {
  '\194[\160-\191]',  -- what lies below are control characters again
  '[\195-\223][\128-\191]',
  '[\224-\239][\128-\191][\128-\191]',
  '[\240-\244][\128-\191][\128-\191][\128-\191]'
}

local function in_hex(bytes)
  return (bytes:gsub('.', function(byte) return ('\\x%02x'):format(byte:byte()) end))
end

local function check_utf8(bytes)
  for _, character in ipairs(utf8_characters) do
    if bytes:find('^' .. character .. '$') then return bytes end
  end
  return in_hex(bytes)
end

local function printable(text)
  return (tostring(text):gsub('%c', in_hex):gsub('[\128-\255][\128-\191]*', check_utf8))
end

local function sort(texts)
  table.sort(texts, function(a, b)
    local late_a, late_b = a:sub(1, 2) == '&&', b:sub(1, 2) == '&&'
    if late_a ~= late_b then return late_b end
    return a < b
  end)
end

local lines = {}
local function add_record(key, kind, name, value)
  lines[#lines + 1] = table.concat({printable(key), kind, printable(name), printable(value)}, '\t')
end

local function add_list(key)
  for i, value in ipairs(redis.call('LRANGE', key, 0, -1)) do
    add_record(key, 'list', i - 1, value)
  end
end

local function add_hash(key)
  local reply, fields, values = redis.call('HGETALL', key), {}, {}
  for i = 1, #reply, 2 do
    fields[#fields + 1] = reply[i]
    values[reply[i]] = reply[i + 1]
  end
  sort(fields)
  for _, field in ipairs(fields) do add_record(key, 'hash', field, values[field]) end
end

local keys = redis.call('KEYS', '*')
sort(keys)
for _, key in ipairs(keys) do
  if redis.call('TYPE', key).ok == 'list' then add_list(key) else add_hash(key) end
end
return table.concat(lines, '\n')
