function program(x)
  local count = 0
  for i = 1, 50000 do
    if ("some mail from user" .. i .. "@example"):find("([a-z]+)[0-9]+@([a-z]+)") then count = count + 1 end
  end
  return count
end
