function program(x)
  local parts, count = {""}, 0
  for i = 1, 200000 do parts[i + 1] = "word" .. i end
  local text = table.concat(parts, " ")
  for i = 1, #text do
    if text:sub(i, i) == " " then count = count + 1 end
  end
  local i = text:find("word199999", 1, true)
  text = text:gsub("word", "w")
  return count + i + #text:upper()
end
