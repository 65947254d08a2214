function program(x)
  local text = ""
  for i = 1, 20000 do
    text = text .. "line " .. i .. "\n"
  end
  return #text
end
