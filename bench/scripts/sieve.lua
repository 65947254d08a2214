function program(x)
  local last, count = 1000000, 0
  local sieve = {}
  for i = 2, last do sieve[i] = true end
  local i = 2
  while i * i <= last do
    if sieve[i] then
      for j = i * i, last, i do sieve[j] = false end
    end
    i = i + 1
  end
  for k = 2, last do
    if sieve[k] then count = count + 1 end
  end
  return count
end
