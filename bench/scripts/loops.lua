function program(x)
  local sum = 0
  for i = 1, 3000 do
    for j = 1, 3000 do
      sum = (sum + i * j) % 1000003
    end
  end
  return sum
end
