-- Workload c: 100,000 string concatenations and substrings.
local i = 0
local result = 0
while i < 100000 do
  local line = "item " .. i .. ";"
  local word = string.sub(line, 1, 4)
  result = result + #word
  i = i + 1
end
print(result)
