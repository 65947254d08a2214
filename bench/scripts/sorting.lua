local words = {}

local function sort(first, last)
  local i, j = first, last
  local pivot = words[(first + last) // 2]
  while i <= j do
    while words[i] < pivot do
      i = i + 1
    end
    while pivot < words[j] do
      j = j - 1
    end
    if i <= j then
      words[i], words[j] = words[j], words[i]
      i = i + 1
      j = j - 1
    end
  end
  if first < j then sort(first, j) end
  if i < last then sort(i, last) end
end

function program(x)
  local number = 12345
  for i = 0, 199999 do
    number = (number * 4093 + 7919) % 524287
    words[i] = "word" .. number
  end
  sort(0, 199999)
  number = 0
  for i = 1, 199999 do
    if words[i - 1] <= words[i] then number = number + 1 end
  end
  return number
end
