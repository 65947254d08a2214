function program(x)
  local words, sum = {}, 0
  for i = 1, 200000 do words["key" .. i] = i end
  for i = 1, 200000 do
    if words["key" .. i] ~= nil then sum = (sum + words["key" .. i]) % 1000003 end
  end
  return sum
end
